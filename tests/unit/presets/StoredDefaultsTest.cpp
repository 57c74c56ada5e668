// The default bank, default preset, memories, paths and options kept in the per-user store across
// instances of the plug-in that come and go in the same store folder.

#include <gtest/gtest.h>

#include <memory>

#include "PresetTestSupport.h"
#include "gui/Editor.h"
#include "plugin/Plugin.h"
#include "presets/FactoryPresets.h"

using namespace imagebytes;
using presets::kPresetCount;
using presets::PresetRecord;

namespace {

std::unique_ptr<Plugin> newInstance() { return std::make_unique<Plugin>(&PresetTestEffect::hostCallback); }
CPresetSystemEditor& editorOf(Plugin& p) { return *p.getPluginEditor(); }

void expectSamePreset(const PresetRecord& got, const PresetRecord& want, const std::string& what, int slots = presets::kPresetSlots) {
    EXPECT_EQ(nameOf(got), nameOf(want)) << what;
    for (int s = 0; s < slots; ++s) EXPECT_EQ(got.values[s], want.values[s]) << what << " slot " << s;
}

class StoredDefaults : public ::testing::Test {
protected:
    std::string stored(const char* name) const { return folder.store() + "/" + name; }
    ScopedStoreFolder folder;
};

}  // namespace

TEST_F(StoredDefaults, FactoryBankThenDefaultBankThenPresetZeroThenDefaultPreset) {
    PresetRecord factory[kPresetCount] = {};
    presets::loadFactoryBank(factory);
    std::vector<PresetRecord> storedBank;
    PresetRecord storedPreset;
    {
        auto plugin = newInstance();  // nothing stored: the factory bank, and nothing written
        for (int p = 0; p < kPresetCount; ++p) expectSamePreset(*plugin->getPreset(p), factory[p], "factory " + std::to_string(p), 72);
        EXPECT_EQ(plugin->getCurrentPreset(), 0);
        EXPECT_FALSE(editorOf(*plugin).readKeyboardFocus());
        EXPECT_EQ(editorOf(*plugin).readManualPath(), "");
        EXPECT_FALSE(std::filesystem::exists(folder.store()));
        for (int p = 0; p < kPresetCount; ++p) {
            plugin->selectPreset(p);
            for (int s = 0; s <= 71; ++s) plugin->setParameter(s, handValue(40 + p, s));
            plugin->setPresetName(("Default " + std::to_string(p)).c_str());
        }
        plugin->selectPreset(7);  // the stored bank says preset 7 is current
        ASSERT_TRUE(editorOf(*plugin).storeDefaultBank());
        storedBank.assign(plugin->bankRecords(), plugin->bankRecords() + kPresetCount);
        plugin->setParameter(3, 0.99f);
        plugin->setPresetName("My Default");
        ASSERT_TRUE(editorOf(*plugin).storeDefaultPreset());
        storedPreset = *plugin->getPreset(7);
    }
    EXPECT_EQ(fileBytes(stored("DefaultBank")).size(), 60689u);
    EXPECT_EQ(fileBytes(stored("DefaultPreset")).size(), 2929u);
    {
        auto plugin = newInstance();  // preset 0 selected after the bank, then replaced by the default preset
        EXPECT_EQ(plugin->getCurrentPreset(), 0);
        expectSamePreset(*plugin->getPreset(0), storedPreset, "preset 0");
        for (int p = 1; p < kPresetCount; ++p) expectSamePreset(*plugin->getPreset(p), storedBank[p], std::to_string(p));
        for (int s = 0; s <= 71; ++s) EXPECT_EQ(plugin->getParameter(s), storedPreset.values[s]) << s;
        EXPECT_EQ(nameOf(plugin->getTemplate()), "Flat");  // preset 0 as it stood before the defaults came in
        ASSERT_TRUE(editorOf(*plugin).clearDefaultPreset());
        EXPECT_FALSE(std::filesystem::exists(stored("DefaultPreset")));
    }
    {
        auto plugin = newInstance();
        expectSamePreset(*plugin->getPreset(0), storedBank[0], "preset 0 of the default bank");
        ASSERT_TRUE(editorOf(*plugin).clearDefaultBank());
    }
    expectSamePreset(*newInstance()->getPreset(20), factory[20], "factory after clearing", 72);
}

TEST_F(StoredDefaults, MemoriesReplaceOnlyThePresetBeingEditedAndMissingOrDamagedOnesChangeNothing) {
    PresetTestEffect fx;
    const auto initial = fx.bankCopy();
    EXPECT_FALSE(fx.ed().recallMemoA());
    EXPECT_FALSE(fx.ed().restoreDefaultBank());
    EXPECT_TRUE(sameBank(fx.bankCopy(), initial));
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
    const auto before = fx.bankCopy();
    ASSERT_TRUE(fx.ed().recallMemoA());
    expectSamePreset(fx.preset(3), memoA, "memo A");
    for (int p = 0; p < kPresetCount; ++p) EXPECT_TRUE(p == 3 || samePreset(fx.preset(p), before[p])) << p;
    fx.selectPreset(8);  // recalled elsewhere, a memory takes that preset's place with its own name
    ASSERT_TRUE(fx.ed().recallMemoB());
    expectSamePreset(fx.preset(8), memoB, "memo B in preset 8");
    EXPECT_EQ(fx.getCurrentPreset(), 8);
    EXPECT_EQ(fx.getParameter(10), memoB.values[10]);

    Bytes foreign = presetImage(false, "Foreign", {{0, 0.5f}});
    foreign.data[2] = 'z';
    writeBytes(stored("MemoA"), foreign.data);
    writeBytes(stored("MemoB"), {0x72, 0x76, 0x58, 0x54});
    writeBytes(stored("DefaultPreset"), Bytes().magic().u8(0x21).text("Short name", 20).data);
    writeBytes(stored("DefaultBank"), Bytes().header(0x39, 0, 0, 0).data);
    const auto current = fx.bankCopy();
    fx.selections.clear();
    EXPECT_FALSE(fx.ed().recallMemoA());
    EXPECT_FALSE(fx.ed().recallMemoB());
    EXPECT_FALSE(fx.ed().restoreDefaultPreset());
    EXPECT_FALSE(fx.ed().restoreDefaultBank());
    EXPECT_TRUE(sameBank(fx.bankCopy(), current));
    EXPECT_TRUE(fx.selections.empty());
}

TEST_F(StoredDefaults, PathsAndOptionsSurviveTheInstance) {
    {
        auto plugin = newInstance();
        editorOf(*plugin).loadPresetFile(folder.scratch() + "/presets/Lead.tyx");
        editorOf(*plugin).saveBankFile(folder.scratch() + "/All.tyb");
        ASSERT_TRUE(editorOf(*plugin).storeKeyboardFocus(true));
    }
    const std::string dir = folder.scratch() + "/";
    EXPECT_EQ(fileBytes(stored("CurrDir")), std::vector<uint8_t>(dir.begin(), dir.end()));
    EXPECT_EQ(fileBytes(stored("KeyboardFocus")), (std::vector<uint8_t>{1, 0, 0, 0}));
    {
        auto plugin = newInstance();
        const auto& paths = editorOf(*plugin).rememberedPaths();
        EXPECT_EQ(std::string(paths.currentDirectory), dir);
        EXPECT_STREQ(paths.currentPresetFile, "Lead.tyx");
        EXPECT_STREQ(paths.currentBankFile, "All.tyb");
        EXPECT_TRUE(editorOf(*plugin).readKeyboardFocus());
        ASSERT_TRUE(editorOf(*plugin).storeKeyboardFocus(false));
        EXPECT_EQ(fileBytes(stored("KeyboardFocus")), (std::vector<uint8_t>{0, 0, 0, 0}));
    }
    // A stored path too long for its buffer comes back empty rather than cut; any set byte of
    // the focus value means on.
    writeBytes(stored("CurrPreset"), std::vector<uint8_t>(257, 'p'));
    writeBytes(stored("KeyboardFocus"), {0, 0, 1, 0});
    writeBytes(stored("ManualPath"), {'/', 'd', 'o', 'c', '/', 'm', '.', 'p', 'd', 'f'});
    writeBytes(stored("DefaultMidi"), {1, 2, 3});
    auto plugin = newInstance();
    EXPECT_STREQ(editorOf(*plugin).rememberedPaths().currentPresetFile, "");
    EXPECT_STREQ(editorOf(*plugin).rememberedPaths().currentBankFile, "All.tyb");
    EXPECT_TRUE(editorOf(*plugin).readKeyboardFocus());
    EXPECT_EQ(editorOf(*plugin).readManualPath(), "/doc/m.pdf");
    EXPECT_TRUE(editorOf(*plugin).clearDefaultMidi());
    EXPECT_FALSE(std::filesystem::exists(stored("DefaultMidi")));
}
