// Default bank, default preset, memories, paths and options in the per-user store, across
// instances of the plug-in that come and go in the same store folder.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "ImageBytes.h"
#include "PresetTestEffect.h"
#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/FactoryPresets.h"

using imagebytes::Bytes;
using imagebytes::handValue;
using presets::kPresetCount;
using presets::kPresetSlots;
using presets::PresetRecord;

namespace {

VstIntPtr quietHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

std::unique_ptr<Plugin> newInstance() { return std::make_unique<Plugin>(&quietHost); }
CPresetSystemEditor& editorOf(Plugin& p) { return *p.getPluginEditor(); }

std::vector<PresetRecord> bankOf(const Plugin& p) {
    return std::vector<PresetRecord>(p.bankRecords(), p.bankRecords() + kPresetCount);
}

void expectSamePreset(const PresetRecord& got, const PresetRecord& want, const std::string& what) {
    EXPECT_EQ(nameOf(got), nameOf(want)) << what;
    for (int s = 0; s < kPresetSlots; ++s) EXPECT_EQ(got.values[s], want.values[s]) << what << " slot " << s;
}

std::vector<uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// Edits preset p of a running instance the way a user would: equalizer values and a name.
void editPreset(Plugin& plugin, int p, int seed, const std::string& name) {
    plugin.selectPreset(p);
    for (int s = 0; s <= 71; ++s) plugin.setParameter(s, handValue(seed, s));
    plugin.setPresetName(name.c_str());
}

class StoredDefaults : public ::testing::Test {
protected:
    ScopedStoreFolder folder;
};

}  // namespace

TEST_F(StoredDefaults, WithNothingStoredAnInstanceStartsWithTheFactoryBank) {
    PresetRecord factory[kPresetCount] = {};
    presets::loadFactoryBank(factory);
    {
        auto plugin = newInstance();
        EXPECT_EQ(plugin->getCurrentPreset(), 0);
        for (int p = 0; p < kPresetCount; ++p) EXPECT_EQ(nameOf(*plugin->getPreset(p)), nameOf(factory[p])) << p;
        for (int s = 0; s <= 71; ++s) EXPECT_EQ(plugin->getParameter(s), factory[0].values[s]) << s;
        EXPECT_FALSE(editorOf(*plugin).readKeyboardFocus());
        EXPECT_EQ(editorOf(*plugin).readManualPath(), "");
        EXPECT_STREQ(editorOf(*plugin).rememberedPaths().currentDirectory, "");
    }
    // Starting and closing without a file operation writes nothing.
    EXPECT_FALSE(std::filesystem::exists(folder.store()));
}

TEST_F(StoredDefaults, DefaultBankThenPresetZeroThenDefaultPreset) {
    std::vector<PresetRecord> storedBank;
    PresetRecord storedPreset;
    {
        auto plugin = newInstance();
        for (int p = 0; p < kPresetCount; ++p) editPreset(*plugin, p, 40 + p, "Default " + std::to_string(p));
        plugin->selectPreset(7);  // the stored bank says preset 7 is current
        ASSERT_TRUE(editorOf(*plugin).storeDefaultBank());
        storedBank = bankOf(*plugin);

        editPreset(*plugin, 7, 99, "My Default");
        ASSERT_TRUE(editorOf(*plugin).storeDefaultPreset());
        storedPreset = *plugin->getPreset(7);
    }
    EXPECT_EQ(fileBytes(folder.store() + "/DefaultBank").size(), 60689u);
    EXPECT_EQ(fileBytes(folder.store() + "/DefaultPreset").size(), 2929u);
    {
        auto plugin = newInstance();
        // Preset 0 selected after the bank, then replaced by the default preset.
        EXPECT_EQ(plugin->getCurrentPreset(), 0);
        expectSamePreset(*plugin->getPreset(0), storedPreset, "preset 0");
        for (int p = 1; p < kPresetCount; ++p)
            expectSamePreset(*plugin->getPreset(p), storedBank[p], "preset " + std::to_string(p));
        for (int s = 0; s <= 71; ++s) EXPECT_EQ(plugin->getParameter(s), storedPreset.values[s]) << s;
        char name[32];
        plugin->getProgramName(name);
        EXPECT_STREQ(name, "My Default");
        // The template is preset 0 as it stood before the defaults came in: "Flat".
        EXPECT_EQ(nameOf(plugin->getTemplate()), "Flat");

        ASSERT_TRUE(editorOf(*plugin).clearDefaultPreset());
        EXPECT_FALSE(std::filesystem::exists(folder.store() + "/DefaultPreset"));
    }
    {
        auto plugin = newInstance();
        expectSamePreset(*plugin->getPreset(0), storedBank[0], "preset 0 of the default bank");
        EXPECT_EQ(plugin->getCurrentPreset(), 0);
        ASSERT_TRUE(editorOf(*plugin).clearDefaultBank());
    }
    {
        auto plugin = newInstance();
        EXPECT_EQ(nameOf(*plugin->getPreset(0)), "Flat");
        EXPECT_EQ(nameOf(*plugin->getPreset(20)), "Spectrum Analyzer");
    }
}

TEST_F(StoredDefaults, MemoriesReplaceOnlyThePresetBeingEdited) {
    PresetTestEffect fx;
    fx.selectPreset(3);
    for (int s = 0; s < 85; ++s) fx.setParameter(s, handValue(5, s));
    fx.setPresetName("Memo A");
    ASSERT_TRUE(fx.ed().storeMemoA());
    const PresetRecord memoA = fx.preset(3);
    fx.setParameter(0, 0.0f);
    fx.setPresetName("Memo B");
    ASSERT_TRUE(fx.ed().storeMemoB());
    const PresetRecord memoB = fx.preset(3);

    fx.setParameter(10, 0.9f);
    fx.setPresetName("Edited");
    const auto before = fx.bankCopy();
    ASSERT_TRUE(fx.ed().recallMemoA());
    expectSamePreset(fx.preset(3), memoA, "memo A");
    for (int p = 0; p < kPresetCount; ++p) {
        if (p != 3) {
            EXPECT_EQ(std::memcmp(&fx.preset(p), &before[p], sizeof before[p]), 0) << p;
        }
    }

    // Recalled elsewhere, the memory keeps that preset's place and brings its own name.
    fx.selectPreset(8);
    ASSERT_TRUE(fx.ed().recallMemoB());
    expectSamePreset(fx.preset(8), memoB, "memo B in preset 8");
    EXPECT_EQ(fx.getCurrentPreset(), 8);
    EXPECT_EQ(fx.getParameter(10), memoB.values[10]);
}

TEST_F(StoredDefaults, MissingForeignOrDamagedStoredValuesChangeNothing) {
    PresetTestEffect fx;
    fx.selectPreset(2);
    fx.selections.clear();
    const auto before = fx.bankCopy();
    EXPECT_FALSE(fx.ed().recallMemoA());
    EXPECT_FALSE(fx.ed().restoreDefaultBank());

    Bytes foreign = imagebytes::presetImage(false, "Foreign", {{0, 0.5f}});
    foreign.data[2] = 'z';
    writeBytes(folder.store() + "/MemoA", foreign.data);
    writeBytes(folder.store() + "/MemoB", {0x72, 0x76, 0x58, 0x54});
    writeBytes(folder.store() + "/DefaultPreset", imagebytes::presetImage(true, "Bad", {{3, 1.5f}}).data);
    Bytes badBank(false);
    badBank.header(0x38, 2, 0, 0).nameRecord(0, "Bad").valueRecord(0, 0, -1.0f);
    writeBytes(folder.store() + "/DefaultBank", badBank.data);
    EXPECT_FALSE(fx.ed().recallMemoA());
    EXPECT_FALSE(fx.ed().recallMemoB());
    EXPECT_FALSE(fx.ed().restoreDefaultPreset());
    EXPECT_FALSE(fx.ed().restoreDefaultBank());
    EXPECT_TRUE(sameBank(fx.bankCopy(), before));
    EXPECT_TRUE(fx.selections.empty());
}

TEST_F(StoredDefaults, HandWrittenLegacyDefaultsAreRestoredAtStart) {
    Bytes legacyBank;
    legacyBank.magic().u8(0x37);
    for (int p = 0; p < kPresetCount; ++p) {
        legacyBank.text("Old " + std::to_string(p));
        for (int s = 0; s < 72; ++s) legacyBank.f32(handValue(p, s));
    }
    writeBytes(folder.store() + "/DefaultBank", legacyBank.data);
    Bytes legacyPreset(true);
    legacyPreset.magic().u8(0x21).text("Old Default");
    for (int s = 0; s < 72; ++s) legacyPreset.f32(handValue(77, s));
    writeBytes(folder.store() + "/DefaultPreset", legacyPreset.data);

    auto plugin = newInstance();
    EXPECT_EQ(nameOf(*plugin->getPreset(0)), "Old Default");
    EXPECT_EQ(nameOf(*plugin->getPreset(1)), "Old 1");
    EXPECT_EQ(nameOf(*plugin->getPreset(20)), "Old 20");
    EXPECT_EQ(plugin->getPreset(0)->values[54], handValue(77, 54));
    EXPECT_EQ(plugin->getPreset(13)->values[5], handValue(13, 5));
    EXPECT_EQ(plugin->getParameter(5), handValue(77, 5));
}

TEST_F(StoredDefaults, PathsOfTheFileDialogsSurviveTheInstance) {
    {
        auto plugin = newInstance();
        editorOf(*plugin).loadPresetFile(folder.scratch() + "/presets/Lead.tyx");
        editorOf(*plugin).saveBankFile(folder.scratch() + "/All.tyb");
    }
    const std::string dir = folder.scratch() + "/";
    EXPECT_EQ(fileBytes(folder.store() + "/CurrDir"), std::vector<uint8_t>(dir.begin(), dir.end()));
    {
        auto plugin = newInstance();
        const auto& paths = editorOf(*plugin).rememberedPaths();
        EXPECT_EQ(std::string(paths.currentDirectory), folder.scratch() + "/");
        EXPECT_STREQ(paths.currentPresetFile, "Lead.tyx");
        EXPECT_STREQ(paths.currentBankFile, "All.tyb");
    }
    // A stored path too long for its buffer comes back empty rather than cut.
    writeBytes(folder.store() + "/CurrPreset", std::vector<uint8_t>(257, 'p'));
    auto plugin = newInstance();
    EXPECT_STREQ(editorOf(*plugin).rememberedPaths().currentPresetFile, "");
    EXPECT_STREQ(editorOf(*plugin).rememberedPaths().currentBankFile, "All.tyb");
}

TEST_F(StoredDefaults, KeyboardFocusManualPathAndTheMidiValue) {
    PresetTestEffect fx;
    EXPECT_FALSE(fx.ed().readKeyboardFocus());
    ASSERT_TRUE(fx.ed().storeKeyboardFocus(true));
    EXPECT_EQ(fileBytes(folder.store() + "/KeyboardFocus"), (std::vector<uint8_t>{1, 0, 0, 0}));
    EXPECT_TRUE(fx.ed().readKeyboardFocus());
    ASSERT_TRUE(fx.ed().storeKeyboardFocus(false));
    EXPECT_EQ(fileBytes(folder.store() + "/KeyboardFocus"), (std::vector<uint8_t>{0, 0, 0, 0}));
    EXPECT_FALSE(fx.ed().readKeyboardFocus());
    writeBytes(folder.store() + "/KeyboardFocus", {0, 0, 1, 0});
    EXPECT_TRUE(fx.ed().readKeyboardFocus());

    writeBytes(folder.store() + "/ManualPath", {'/', 'd', 'o', 'c', '/', 'm', '.', 'p', 'd', 'f'});
    EXPECT_EQ(fx.ed().readManualPath(), "/doc/m.pdf");

    writeBytes(folder.store() + "/DefaultMidi", {1, 2, 3});
    EXPECT_TRUE(fx.ed().clearDefaultMidi());
    EXPECT_FALSE(std::filesystem::exists(folder.store() + "/DefaultMidi"));
}
