// The per-user store: where it lives, how values lie on disk, that writers never leave a half-written
// value; and the default bank, default preset, memories, paths and options kept in it across
// instances of the plug-in that come and go in the same store folder.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <memory>
#include <thread>

#include "PresetTestSupport.h"
#include "gui/Editor.h"
#include "platform/UserStore.h"
#include "plugin/Plugin.h"
#include "presets/FactoryPresets.h"

using namespace imagebytes;
using presets::kPresetCount;
using platform::UserStore;
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

TEST(UserStore, FolderIsTheOverrideThenXdgThenHome) {
    const struct {
        const char *override, *xdg, *want;
    } cases[] = {
        {"/tmp/override", "/tmp/xdg", "/tmp/override"},
        {nullptr, "/tmp/xdg", "/tmp/xdg/Tyx-fonica/TyxVireo"},
        {"", nullptr, "/home/tester/.config/Tyx-fonica/TyxVireo"},
        {nullptr, "relative/ignored", "/home/tester/.config/Tyx-fonica/TyxVireo"},
    };
    for (const auto& c : cases) {
        ScopedEnv a("TYX_VIREO_CONFIG_DIR", c.override), b("XDG_CONFIG_HOME", c.xdg), h("HOME", "/home/tester");
        EXPECT_EQ(UserStore::currentUserFolder(), c.want);
    }
}

TEST(UserStore, OneFilePerValueFourByteLittleEndianNumbersAndOnlyPlainNames) {
    ScopedStoreFolder scratch;
    const UserStore store(scratch.scratch() + "/a/b/TyxVireo/");
    EXPECT_FALSE(store.readDword("latencycomp"));
    EXPECT_FALSE(std::filesystem::exists(store.folder()));  // reading or constructing creates nothing
    ASSERT_TRUE(store.writeDword("latencycomp", 0x01020304u));
    EXPECT_EQ(fileBytes(store.folder() + "/latencycomp"), (std::vector<uint8_t>{4, 3, 2, 1}));
    EXPECT_EQ(store.readDword("latencycomp"), 0x01020304u);
    struct stat info;
    ASSERT_EQ(stat(store.folder().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);

    const std::vector<uint8_t> blob = {0, 1, 2, 0, 255};
    ASSERT_TRUE(store.writeBinary("DefaultPreset", blob.data(), blob.size()));
    EXPECT_EQ(store.readBinary("DefaultPreset"), blob);
    EXPECT_FALSE(store.readBinary("DefaultPreset", 4));  // longer than the reader accepts
    EXPECT_FALSE(store.readDword("DefaultPreset"));     // not a 4-byte value
    ASSERT_TRUE(store.writeString("CurrDir", "/home/ü/"));
    EXPECT_EQ(fileBytes(store.folder() + "/CurrDir").size(), 9u);  // UTF-8, no terminator
    EXPECT_EQ(store.readString("CurrDir"), "/home/ü/");
    writeBytes(store.folder() + "/ManualPath", {'/', 'm', 0, 'j'});
    EXPECT_EQ(store.readString("ManualPath", 10), "/m");  // a stored terminator is tolerated
    EXPECT_TRUE(store.remove("CurrDir"));
    EXPECT_TRUE(store.remove("CurrDir"));  // gone already: fine
    EXPECT_FALSE(store.contains("CurrDir"));

    for (const char* bad : {"", ".", "..", "../escape", "a/b", ".hidden"}) {
        EXPECT_FALSE(store.writeDword(bad, 1)) << bad;
        EXPECT_FALSE(store.readDword(bad)) << bad;
        EXPECT_FALSE(store.remove(bad)) << bad;
    }
    EXPECT_FALSE(store.writeDword(std::string_view("nul\0name", 8), 1));
    EXPECT_FALSE(std::filesystem::exists(scratch.scratch() + "/a/b/escape"));
    const UserStore nowhere{std::string()};
    EXPECT_FALSE(nowhere.writeDword("KeyboardFocus", 1));
    EXPECT_FALSE(nowhere.readDword("KeyboardFocus"));
}

TEST(UserStore, WritersAtTheSameTimeNeverLeaveAHalfWrittenValue) {
    ScopedStoreFolder scratch;
    // Three store objects on one folder writing bank-sized values over each other while a fourth reads.
    const std::vector<uint8_t> first(60689, 0x11), second(60689 * 2, 0x22);
    std::atomic<bool> stop{false};
    std::atomic<int> reads{0}, torn{0}, failedWrites{0};
    auto writer = [&](const std::vector<uint8_t>& value) {
        const UserStore store(scratch.store());
        for (int i = 0; i < 150; ++i) failedWrites += !store.writeBinary("DefaultBank", value.data(), value.size());
    };
    ASSERT_TRUE(UserStore(scratch.store()).writeBinary("DefaultBank", first.data(), first.size()));
    std::thread reader([&] {
        for (const UserStore store(scratch.store()); !stop; ++reads) {
            const auto got = store.readBinary("DefaultBank");
            torn += !got || (*got != first && *got != second);
        }
    });
    std::thread a(writer, std::cref(first)), b(writer, std::cref(second)), c(writer, std::cref(first));
    a.join(), b.join(), c.join();
    stop = true;
    reader.join();
    EXPECT_EQ(failedWrites, 0);
    EXPECT_EQ(torn, 0) << "of " << reads << " reads";
    EXPECT_GT(reads, 0);
    EXPECT_EQ(folderEntries(scratch.store()), std::vector<std::string>{"DefaultBank"});  // every temporary renamed or removed
}
