#pragma once
// A preset layer with the plug-in's identity and save/load exclusions, but none of its engine:
// the loaders' results can be checked field by field without parameters feeding back into the
// bank. Its editor records what the preset strip would be told.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "presets/CPresetSystemEditor.h"
#include "presets/CPresetSystemEffect.h"

// Points the per-user store at a fresh folder for the lifetime of the object.
class ScopedStoreFolder {
public:
    ScopedStoreFolder() {
        char pattern[] = "/tmp/tyx-presets-XXXXXX";
        folder_ = mkdtemp(pattern);
        const char* old = std::getenv("TYX_VIREO_CONFIG_DIR");
        hadOld_ = old != nullptr;
        if (old) old_ = old;
        setenv("TYX_VIREO_CONFIG_DIR", (folder_ + "/store").c_str(), 1);
    }
    ~ScopedStoreFolder() {
        if (hadOld_) setenv("TYX_VIREO_CONFIG_DIR", old_.c_str(), 1);
        else unsetenv("TYX_VIREO_CONFIG_DIR");
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    // A scratch folder for files, and the store folder inside it.
    const std::string& scratch() const { return folder_; }
    std::string store() const { return folder_ + "/store"; }

private:
    std::string folder_;
    std::string old_;
    bool hadOld_ = false;
};

class PresetTestEditor : public CPresetSystemEditor {
public:
    using CPresetSystemEditor::CPresetSystemEditor;
    void showPresetName(const char* name) override { shownNames.emplace_back(name, strnlen(name, 24)); }
    void setPresetMenuTitle(int index, const char* name) override {
        menuTitles[index] = std::string(name, strnlen(name, 24));
    }
    void selectPresetMenuEntry(int index) override { menuSelections.push_back(index); }
    void forgetDisplay() {
        shownNames.clear();
        menuTitles.clear();
        menuSelections.clear();
    }

    std::vector<std::string> shownNames;
    std::map<int, std::string> menuTitles;
    std::vector<int> menuSelections;
};

class PresetTestEffect : public CPresetSystemEffect {
public:
    PresetTestEffect() : CPresetSystemEffect(&hostCallback) {
        setUniqueID(fourCharCode('T', 'X', 'v', 'r'));
        testEditor = new PresetTestEditor(this);
        setEditor(testEditor);
    }
    ~PresetTestEffect() override = default;

    bool isExcludedFromSave(int index) override { return index > 84; }
    bool isExcludedFromLoad(int index) override { return index > 71; }
    void processReplacing(float**, float**, VstInt32) override {}
    void selectPreset(int index) override {
        selections.push_back(index);
        CPresetSystemEffect::selectPreset(index);
    }

    PresetTestEditor& ed() { return *testEditor; }
    std::vector<presets::PresetRecord> bankCopy() const {
        return std::vector<presets::PresetRecord>(bankRecords(), bankRecords() + presets::kPresetCount);
    }
    const presets::PresetRecord& preset(int i) const { return bankRecords()[i]; }
    presets::PresetRecord& preset(int i) { return bankRecords()[i]; }

    std::vector<int> selections;

private:
    static VstIntPtr hostCallback(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
        return opcode == audioMasterVersion ? kVstVersion : 0;
    }
    PresetTestEditor* testEditor = nullptr;
};

// Byte-for-byte equality of two banks (names with what follows their NUL, values as bits).
inline bool sameBank(const std::vector<presets::PresetRecord>& a, const std::vector<presets::PresetRecord>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), sizeof(presets::PresetRecord) * a.size()) == 0;
}

inline std::string nameOf(const presets::PresetRecord& r) { return std::string(r.name, strnlen(r.name, 24)); }
