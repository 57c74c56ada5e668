#pragma once
// The preset layer between the VST effect base and the plug-in: a bank of 21 presets that
// the user steps through inside the plug-in (the host sees a single program), filled from the
// factory presets, with the values of the preset being edited kept in the bank itself.

#include <cstdint>
#include <memory>

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

    // Preset-system operations.
    virtual int getCurrentPreset() { return currentPreset; }
    virtual void selectPreset(int index);
    virtual void setPresetName(const char* name);
    virtual VstInt32 getUniqueID() { return cEffect.uniqueID; }
    virtual void resetPresetToTemplate(int index);
    virtual bool isExcludedFromSave(int /*index*/) { return false; }
    virtual bool isExcludedFromLoad(int /*index*/) { return false; }
    virtual void restoreStartupState();
    virtual void loadFactoryPresets();

    bool isLoadingPreset() const { return static_cast<bool>(isLoading); }
    const presets::PresetRecord* getPreset(int index) const;
    const presets::PresetRecord& getTemplate() const { return presetTemplate; }
    // The bank's kPresetCount records, for the image loaders and builders (null without a bank).
    presets::PresetRecord* bankRecords() { return presets.get(); }
    const presets::PresetRecord* bankRecords() const { return presets.get(); }

protected:
    // The editor as the preset layer sees it (null when none exists).
    CPresetSystemEditor* presetEditor();

    std::unique_ptr<presets::PresetRecord[]> presets;
    int32_t currentPreset = 0;
    std::unique_ptr<uint8_t[]> bankHeaderBuffer;
    std::unique_ptr<uint8_t[]> chunkBuffer;
    int32_t chunkBufferSize = 0;
    presets::PresetRecord presetTemplate{};
    presets::LoadingFlag isLoading;
};
