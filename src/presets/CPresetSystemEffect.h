#pragma once
// The preset layer between the VST effect base and the plug-in: a bank of 21 presets that
// the user steps through inside the plug-in (the host sees a single program), filled from the
// factory presets, with the values of the preset being edited kept in the bank itself.
//
// Threads. The bank is read and written by the host's threads (chunks, parameters, names), the
// editor's (files, memories, the preset strip) and the audio thread (automation). Every access
// to its bytes, and to the template, happens under the bank lock (BankScope), which each holder
// keeps only for copying, parsing or filling bytes: never across a preset's application to the
// plug-in, never across file or store I/O. A parameter write must not wait, since hosts automate
// from the audio thread, so it is posted (slot and value) and the lock is only tried: a thread
// that gets it applies everything pending itself, and otherwise the holder applies it before
// letting the lock go and looks again after, so nothing posted meanwhile is left behind. A
// posted write lands in the preset that is current when it is applied, as if it had come just
// after the holder's work. getParameter reads a copy of the current preset's values kept in
// atomics, so it never waits either.

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/PostedValues.h"
#include "platform/TimedLock.h"
#include "presets/LoadingFlag.h"
#include "presets/PresetRecord.h"
#include "vst/AudioEffectX.h"

class CPresetSystemEditor;

class CPresetSystemEffect : public AudioEffectX {
public:
    static constexpr int kBankHeaderBytes = 8432;
    static constexpr int kChunkBufferBytes = 66745;

    explicit CPresetSystemEffect(audioMasterCallback audioMaster);
    ~CPresetSystemEffect() override;

    // Host-facing operations.
    // A chunk call without data is refused with -1 (the base would answer 0 for any missing buffer).
    VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;
    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    VstInt32 getProgram() override { return 0; }
    void setProgram(VstInt32 /*program*/) override {}
    void getProgramName(char* text) override;
    void setProgramName(char* text) override;
    bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;
    VstInt32 processEvents(VstEvents* /*events*/) override { return 0; }
    // The whole bank as a chunk: 4 bytes format version, 4 bytes magic, then the bank image.
    // isPreset is ignored: the bank always travels whole. The host reads the bytes until the
    // next getChunk. 0 when no chunk could be built.
    VstInt32 getChunk(void** data, bool isPreset = false) override;
    // Takes a chunk of either byte order, current or legacy. -1 for missing data, a foreign
    // magic, an unknown version or a chunk too short or damaged to read; 0 otherwise.
    VstInt32 setChunk(void* data, VstInt32 byteSize, bool isPreset = false) override;

    // The bank lock for a scope, with a bounded wait: check it before touching the bank or the
    // template. Letting it go applies the parameter writes posted meanwhile. Nests on one thread.
    class BankScope {
    public:
        explicit BankScope(CPresetSystemEffect& effect, int waitMs = platform::TimedLock::kDefaultWaitMs)
            : effect_(effect), owns_(effect.bankLock.lock(waitMs)) {}
        ~BankScope();
        BankScope(const BankScope&) = delete;
        BankScope& operator=(const BankScope&) = delete;
        explicit operator bool() const { return owns_; }

    private:
        CPresetSystemEffect& effect_;
        bool owns_;
    };

    // Preset-system operations.
    virtual int getCurrentPreset() { return currentPreset.load(std::memory_order_relaxed); }
    virtual void selectPreset(int index);
    virtual void setPresetName(const char* name);
    virtual VstInt32 getUniqueID() { return cEffect.uniqueID; }
    virtual void resetPresetToTemplate(int index);
    virtual bool isExcludedFromSave(int /*index*/) { return false; }
    virtual bool isExcludedFromLoad(int /*index*/) { return false; }
    virtual void restoreStartupState();
    virtual void loadFactoryPresets();

    bool isLoadingPreset() const { return static_cast<bool>(isLoading); }
    // A copy of preset index taken under the bank lock; false (and out untouched) for an index
    // outside the bank, without a bank, or when the lock could not be had.
    bool copyPreset(int index, presets::PresetRecord& out);
    // The same for the name alone: what the editor shows while another thread may load a bank.
    bool copyPresetName(int index, char (&out)[presets::kNameField]);
    // The bank, the template and each preset in place: only under a BankScope (the image loaders
    // and builders take one), or where no other thread can reach the effect.
    const presets::PresetRecord* getPreset(int index) const;
    const presets::PresetRecord& getTemplate() const { return presetTemplate; }
    presets::PresetRecord* bankRecords() { return presets.get(); }
    const presets::PresetRecord* bankRecords() const { return presets.get(); }

protected:
    // The editor as the preset layer sees it (null when none exists).
    CPresetSystemEditor* presetEditor();
    // Stores value into slot of every preset, like a parameter write: it never waits.
    void storeInEveryPreset(int slot, float value);

    std::unique_ptr<presets::PresetRecord[]> presets;
    std::atomic<int32_t> currentPreset{0};
    std::unique_ptr<uint8_t[]> bankHeaderBuffer;
    std::unique_ptr<uint8_t[]> chunkBuffer;
    int32_t chunkBufferSize = 0;
    presets::PresetRecord presetTemplate{};
    presets::LoadingFlag isLoading;

private:
    // With the bank lock held: the posted writes, then the copy getParameter reads.
    void settleBank();
    // Without it: the posted writes, if the lock is free at once.
    void applyPostedWrites();
    bool writesPending() const { return toCurrentPreset.pending() || toEveryPreset.pending(); }

    platform::TimedLock bankLock;
    platform::PostedValues<presets::kPresetSlots> toCurrentPreset;
    platform::PostedValues<presets::kPresetSlots> toEveryPreset;
    std::atomic<float> currentValues[presets::kPresetSlots] = {};
};
