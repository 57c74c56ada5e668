// Preset ("tyx") and bank ("tyb") files, as the editor's dialogs use them with a chosen path.

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>

#include "PresetTestSupport.h"

using namespace imagebytes;
using presets::kPresetCount;

namespace {

class PresetFiles : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return dir + "/" + name; }
    // Every preset with values and a name of its own.
    void scramble(int seed) {
        for (int p = 0; p < kPresetCount; ++p) {
            fx.selectPreset(p);
            for (int s = 0; s < 85; ++s) fx.setParameter(s, handValue(p + seed, s));
            fx.setPresetName(("Scrambled " + std::to_string(p + seed)).c_str());
        }
    }

    ScopedStoreFolder folder;
    std::string dir = folder.scratch() + "/files";
    PresetTestEffect fx;
};

}  // namespace

TEST_F(PresetFiles, PresetAndBankFilesRoundTripAndRememberTheirPaths) {
    std::filesystem::create_directories(dir);
    scramble(3);
    fx.selectPreset(6);
    for (int s = 0; s < 94; ++s) fx.setParameter(s, handValue(1, s));
    fx.setPresetName("Saved Preset");
    ASSERT_TRUE(fx.ed().savePresetFile(path("mine.tyx")));
    EXPECT_STREQ(fx.ed().rememberedPaths().currentDirectory, (dir + "/").c_str());
    EXPECT_STREQ(fx.ed().rememberedPaths().currentPresetFile, "mine.tyx");
    EXPECT_EQ(fileBytes(path("mine.tyx")).size(), 2929u);
    fx.selectPreset(9);
    ASSERT_TRUE(fx.ed().saveBankFile(path("all.tyb")));
    EXPECT_STREQ(fx.ed().rememberedPaths().currentBankFile, "all.tyb");
    EXPECT_EQ(fileBytes(path("all.tyb")).size(), 60689u);
    const auto saved = fx.bankCopy();

    PresetTestEffect other;
    other.selectPreset(2);
    ASSERT_TRUE(other.ed().loadPresetFile(path("mine.tyx")));
    EXPECT_EQ(nameOf(other.preset(2)), "Saved Preset");
    for (int s = 0; s < 94; ++s) EXPECT_EQ(other.preset(2).values[s], s < 85 ? handValue(1, s) : other.getTemplate().values[s]) << s;
    EXPECT_STREQ(other.ed().rememberedPaths().currentPresetFile, "mine.tyx");
    EXPECT_STREQ(other.ed().rememberedPaths().currentBankFile, "");

    other.selectPreset(13);
    ASSERT_TRUE(other.ed().loadBankFile(path("all.tyb")));
    for (int p = 0; p < kPresetCount; ++p) {
        EXPECT_EQ(nameOf(other.preset(p)), nameOf(saved[p]));
        for (int s = 0; s < 85; ++s) ASSERT_EQ(other.preset(p).values[s], saved[p].values[s]) << p << "/" << s;
    }
    EXPECT_EQ(other.getCurrentPreset(), 0);  // the image said 9; a bank file always opens at preset 0
    EXPECT_EQ(other.selections.back(), 0);
    EXPECT_EQ(other.ed().menuSelections.back(), 0);
    EXPECT_EQ(other.ed().shownNames.back(), nameOf(saved[0]));
}

TEST_F(PresetFiles, MissingShortForeignOrDamagedFilesChangeNothingAndReversedOnesLoadOnlyWhenAskedFor) {
    fx.selectPreset(7);
    const auto before = fx.bankCopy();
    Bytes foreign = presetImage(false, "Foreign", {{0, 0.5f}}), mixed = presetImage(true, "Mixed", {{2, 0.25f}});
    foreign.data[1] = 'Q';
    std::memcpy(mixed.data.data(), "\x72\x76\x58\x54", 4);  // magic in the machine's order, values reversed
    writeBytes(path("four.tyx"), {0x72, 0x76, 0x58, 0x54});
    writeBytes(path("empty.tyb"), {});
    writeBytes(path("foreign.tyx"), foreign.data);
    writeBytes(path("damaged.tyx"), Bytes().magic().u8(0x21).text("Short name", 20).data);
    writeBytes(path("unknown.tyb"), Bytes().header(0x39, 0, 0, 0).data);
    writeBytes(path("mixed.tyx"), mixed.data);
    std::filesystem::create_directory(path("folder.tyx"));

    fx.selections.clear();
    for (const char* name : {"missing.tyx", "four.tyx", "empty.tyb", "foreign.tyx", "damaged.tyx", "folder.tyx"})
        EXPECT_FALSE(fx.ed().loadPresetFile(path(name))) << name;
    for (const char* name : {"missing.tyx", "four.tyx", "empty.tyb", "foreign.tyx", "folder.tyx"})
        EXPECT_FALSE(fx.ed().loadPresetFile(path(name), true)) << name << " reversed";
    for (const char* name : {"missing.tyb", "four.tyx", "empty.tyb", "damaged.tyx", "unknown.tyb"})
        EXPECT_FALSE(fx.ed().loadBankFile(path(name))) << name;
    EXPECT_TRUE(sameBank(fx.bankCopy(), before));
    EXPECT_EQ(fx.getCurrentPreset(), 7);
    EXPECT_TRUE(fx.selections.empty());

    fx.ed().loadPresetFile(path("mixed.tyx"));
    EXPECT_NE(nameOf(fx.preset(7)), "Mixed");
    ASSERT_TRUE(fx.ed().loadPresetFile(path("mixed.tyx"), true));
    EXPECT_EQ(nameOf(fx.preset(7)), "Mixed");
    EXPECT_EQ(fx.preset(7).values[2], 0.25f);
}

TEST_F(PresetFiles, FailedSaveKeepsThePreviousFileWhole) {
    std::filesystem::create_directories(dir);
    scramble(1);
    ASSERT_TRUE(fx.ed().saveBankFile(path("keep.tyb")));
    const auto original = fileBytes(path("keep.tyb"));
    scramble(2);

    struct rlimit old, small;  // the file system refuses the write half-way: files may not grow past 4 KiB
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    small = old;
    small.rlim_cur = 4096;
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved = fx.ed().saveBankFile(path("keep.tyb"));
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(saved);
    EXPECT_EQ(fileBytes(path("keep.tyb")), original);
    EXPECT_EQ(folderEntries(dir), std::vector<std::string>{"keep.tyb"});  // no temporary left over

    EXPECT_FALSE(fx.ed().savePresetFile(path("nowhere/preset.tyx")));  // no such folder, or a folder in the way
    std::filesystem::create_directory(path("taken.tyx"));
    EXPECT_FALSE(fx.ed().savePresetFile(path("taken.tyx")));
    EXPECT_EQ(folderEntries(dir), (std::vector<std::string>{"keep.tyb", "taken.tyx"}));

    writeBytes(path("shared.tyx"), {1, 2, 3});  // saving over a file keeps its permissions
    std::filesystem::permissions(path("shared.tyx"), std::filesystem::perms(0640));
    ASSERT_TRUE(fx.ed().savePresetFile(path("shared.tyx")));
    EXPECT_EQ(std::filesystem::status(path("shared.tyx")).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(fileBytes(path("shared.tyx")).size(), 2929u);
}

TEST(RememberedPaths, AreSplitAtTheLastSlashAndNeverCut) {
    presets::RememberedPaths paths;
    paths.rememberBankFile("/home/someone/My Presets/v1/Bank.tyb");
    EXPECT_STREQ(paths.currentDirectory, "/home/someone/My Presets/v1/");
    EXPECT_STREQ(paths.currentBankFile, "Bank.tyb");
    EXPECT_TRUE(paths.changed);
    paths.rememberPresetFile("plain.tyx");
    EXPECT_STREQ(paths.currentDirectory, "");
    EXPECT_STREQ(paths.currentPresetFile, "plain.tyx");
    EXPECT_STREQ(paths.currentBankFile, "Bank.tyb");
    const std::string fits = std::string(1, '/').append(254, 'd') + "/";  // 256 bytes of folder fit; 257 would be cut
    paths.rememberPresetFile(fits + "p.tyx");
    EXPECT_EQ(std::string(paths.currentDirectory), fits);
    paths.rememberPresetFile(std::string(1, '/').append(255, 'd') + "/p.tyx");
    EXPECT_STREQ(paths.currentDirectory, "");
    EXPECT_STREQ(paths.currentPresetFile, "p.tyx");
    paths.rememberPresetFile("/x/" + std::string(257, 'f'));
    EXPECT_STREQ(paths.currentDirectory, "/x/");
    EXPECT_STREQ(paths.currentPresetFile, "");
}
