#pragma once
// The preset layer as the fuzzers drive it: the plug-in's identity and its save/load
// exclusions, an editor that notes whether the last bank load was refused, and the checks
// every input must pass. A failed check aborts, which libFuzzer reports as a crash.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "presets/CPresetSystemEditor.h"
#include "presets/CPresetSystemEffect.h"

namespace fuzzing {

inline void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "fuzz check failed: %s\n", what);
        std::abort();
    }
}

class FuzzEditor : public CPresetSystemEditor {
public:
    using CPresetSystemEditor::CPresetSystemEditor;
    bool loadBankRecords(const uint8_t* records, size_t size, const presets::image::ImageHeader& header,
                         bool swapped) override {
        lastBankLoadApplied = CPresetSystemEditor::loadBankRecords(records, size, header, swapped);
        return lastBankLoadApplied;
    }
    bool lastBankLoadApplied = true;
};

class FuzzEffect : public CPresetSystemEffect {
public:
    FuzzEffect() : CPresetSystemEffect(&host) {
        setUniqueID(fourCharCode('T', 'X', 'v', 'r'));
        fuzzEditor = new FuzzEditor(this);
        setEditor(fuzzEditor);
    }
    bool isExcludedFromSave(int index) override { return index > 84; }
    bool isExcludedFromLoad(int index) override { return index > 71; }
    void processReplacing(float**, float**, VstInt32) override {}

    FuzzEditor& ed() { return *fuzzEditor; }

    // The bank and the current preset, byte for byte.
    struct State {
        std::vector<presets::PresetRecord> bank;
        int current = 0;
        bool operator==(const State& o) const {
            return current == o.current && bank.size() == o.bank.size() &&
                   std::memcmp(bank.data(), o.bank.data(), bank.size() * sizeof(presets::PresetRecord)) == 0;
        }
    };
    State state() const {
        return {std::vector<presets::PresetRecord>(bankRecords(), bankRecords() + presets::kPresetCount), currentPreset};
    }

    // What holds after any input: a preset of the bank is current and every name ends within
    // its field, so the host's name calls never read past it.
    void requireSound() const {
        require(currentPreset >= 0 && currentPreset < presets::kPresetCount, "current preset inside the bank");
        for (int p = 0; p < presets::kPresetCount; ++p)
            require(strnlen(bankRecords()[p].name, presets::kNameField) < presets::kNameField, "name ends in its field");
    }
    bool allValuesNormalized() const {
        for (int p = 0; p < presets::kPresetCount; ++p)
            for (float v : bankRecords()[p].values)
                if (!(v >= 0.0f && v <= 1.0f)) return false;
        return true;
    }

private:
    static VstIntPtr host(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
        return opcode == audioMasterVersion ? kVstVersion : 0;
    }
    FuzzEditor* fuzzEditor = nullptr;
};

}  // namespace fuzzing
