// Preset ("tyx") and bank ("tyb") files: what the editor's dialogs call with a chosen path.

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <memory>

#include "PresetTestSupport.h"

using namespace imagebytes;
using presets::kPresetCount;

namespace {

std::vector<std::string> folderEntries(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

class PresetFiles : public ::testing::Test {
protected:
    void SetUp() override {
        dir = folder.scratch() + "/files";
        std::filesystem::create_directories(dir);
        fx = std::make_unique<PresetTestEffect>();
    }
    std::string path(const std::string& name) const { return dir + "/" + name; }
    // Gives every preset of the bank values and a name of its own.
    void scramble(PresetTestEffect& e, int seed) {
        for (int p = 0; p < kPresetCount; ++p) {
            e.selectPreset(p);
            for (int s = 0; s < 85; ++s) e.setParameter(s, handValue(p + seed, s));
            e.setPresetName(("Scrambled " + std::to_string(p + seed)).c_str());
        }
    }

    ScopedStoreFolder folder;
    std::string dir;
    std::unique_ptr<PresetTestEffect> fx;
};

}  // namespace

TEST_F(PresetFiles, PresetAndBankFilesRoundTripAndRememberTheirPaths) {
    scramble(*fx, 3);
    fx->selectPreset(6);
    for (int s = 0; s < 94; ++s) fx->setParameter(s, handValue(1, s));
    fx->setPresetName("Saved Preset");
    ASSERT_TRUE(fx->ed().savePresetFile(path("mine.tyx")));
    EXPECT_STREQ(fx->ed().rememberedPaths().currentDirectory, (dir + "/").c_str());
    EXPECT_STREQ(fx->ed().rememberedPaths().currentPresetFile, "mine.tyx");
    EXPECT_EQ(fileBytes(path("mine.tyx")).size(), 2929u);
    fx->selectPreset(9);
    ASSERT_TRUE(fx->ed().saveBankFile(path("all.tyb")));
    EXPECT_STREQ(fx->ed().rememberedPaths().currentBankFile, "all.tyb");
    EXPECT_EQ(fileBytes(path("all.tyb")).size(), 60689u);
    const auto saved = fx->bankCopy();

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
    // The image said 9; a bank file always opens at preset 0.
    EXPECT_EQ(other.getCurrentPreset(), 0);
    EXPECT_EQ(other.selections.back(), 0);
    EXPECT_EQ(other.ed().menuSelections.back(), 0);
    EXPECT_EQ(other.ed().shownNames.back(), nameOf(saved[0]));
}

TEST_F(PresetFiles, EndianReversedPresetFileLoadsOnlyWhenAskedFor) {
    Bytes mixed = presetImage(true, "Mixed", {{2, 0.25f}});  // magic in the machine's order, values reversed
    std::memcpy(mixed.data.data(), "\x72\x76\x58\x54", 4);
    writeBytes(path("mixed.tyx"), mixed.data);
    fx->selectPreset(5);
    fx->ed().loadPresetFile(path("mixed.tyx"));
    EXPECT_NE(nameOf(fx->preset(5)), "Mixed");
    ASSERT_TRUE(fx->ed().loadPresetFile(path("mixed.tyx"), true));
    EXPECT_EQ(nameOf(fx->preset(5)), "Mixed");
    EXPECT_EQ(fx->preset(5).values[2], 0.25f);
}

TEST_F(PresetFiles, MissingShortForeignOrDamagedFilesChangeNothing) {
    fx->selectPreset(7);
    const auto before = fx->bankCopy();
    writeBytes(path("four.tyx"), {0x72, 0x76, 0x58, 0x54});
    writeBytes(path("empty.tyb"), {});
    Bytes foreign = presetImage(false, "Foreign", {{0, 0.5f}});
    foreign.data[1] = 'Q';
    writeBytes(path("foreign.tyx"), foreign.data);
    writeBytes(path("damaged.tyx"), presetImage(false, "Damaged", {{0, 0.5f}, {1, 1.5f}}).data);
    writeBytes(path("damaged.tyb"), handBank(false, 4, "Damaged", 4, 1, 1.5f).data);
    writeBytes(path("unknown.tyb"), Bytes().header(0x39, 0, 0, 0).data);
    std::filesystem::create_directory(path("folder.tyx"));

    fx->selections.clear();
    for (bool reversed : {false, true})
        for (const char* name : {"missing.tyx", "four.tyx", "empty.tyb", "foreign.tyx", "damaged.tyx", "folder.tyx"})
            if (!reversed || std::string(name) != "damaged.tyx") {
                EXPECT_FALSE(fx->ed().loadPresetFile(path(name), reversed)) << name;
            }
    for (const char* name : {"missing.tyb", "four.tyx", "empty.tyb", "damaged.tyb", "unknown.tyb"})
        EXPECT_FALSE(fx->ed().loadBankFile(path(name))) << name;
    EXPECT_TRUE(sameBank(fx->bankCopy(), before));
    EXPECT_EQ(fx->getCurrentPreset(), 7);
    EXPECT_TRUE(fx->selections.empty());
}

TEST_F(PresetFiles, FailedSaveKeepsThePreviousFileWhole) {
    scramble(*fx, 1);
    ASSERT_TRUE(fx->ed().saveBankFile(path("keep.tyb")));
    const auto original = fileBytes(path("keep.tyb"));
    scramble(*fx, 2);

    // The file system refuses the write half-way: files may not grow past 4 KiB.
    struct rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    struct rlimit small = old;
    small.rlim_cur = 4096;
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved = fx->ed().saveBankFile(path("keep.tyb"));
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previousHandler);

    EXPECT_FALSE(saved);
    EXPECT_EQ(fileBytes(path("keep.tyb")), original);
    EXPECT_EQ(folderEntries(dir), std::vector<std::string>{"keep.tyb"});  // no temporary left over

    // A folder that does not exist, or a folder in the way of the file: nothing is written.
    EXPECT_FALSE(fx->ed().savePresetFile(path("nowhere/preset.tyx")));
    std::filesystem::create_directory(path("taken.tyx"));
    EXPECT_FALSE(fx->ed().savePresetFile(path("taken.tyx")));
    EXPECT_TRUE(std::filesystem::is_directory(path("taken.tyx")));
    EXPECT_EQ(folderEntries(dir), (std::vector<std::string>{"keep.tyb", "taken.tyx"}));

    // Saving over a file keeps its permissions.
    writeBytes(path("shared.tyx"), {1, 2, 3});
    std::filesystem::permissions(path("shared.tyx"), std::filesystem::perms(0640));
    ASSERT_TRUE(fx->ed().savePresetFile(path("shared.tyx")));
    EXPECT_EQ(std::filesystem::status(path("shared.tyx")).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(fileBytes(path("shared.tyx")).size(), 2929u);
}

TEST_F(PresetFiles, PathsAreSplitAtTheLastSlash) {
    presets::RememberedPaths paths;
    paths.rememberBankFile("/home/someone/My Presets/v1/Bank.tyb");
    EXPECT_STREQ(paths.currentDirectory, "/home/someone/My Presets/v1/");
    EXPECT_STREQ(paths.currentBankFile, "Bank.tyb");
    EXPECT_TRUE(paths.changed);
    paths.rememberPresetFile("plain.tyx");
    EXPECT_STREQ(paths.currentDirectory, "");
    EXPECT_STREQ(paths.currentPresetFile, "plain.tyx");
    EXPECT_STREQ(paths.currentBankFile, "Bank.tyb");

    // 256 bytes of folder fit; 257 would have to be cut, which would name another folder.
    const std::string fits = "/" + std::string(254, 'd') + "/";
    paths.rememberPresetFile(fits + "p.tyx");
    EXPECT_EQ(std::string(paths.currentDirectory), fits);
    paths.rememberPresetFile("/" + std::string(255, 'd') + "/p.tyx");
    EXPECT_STREQ(paths.currentDirectory, "");
    EXPECT_STREQ(paths.currentPresetFile, "p.tyx");
    paths.rememberPresetFile("/x/" + std::string(257, 'f'));
    EXPECT_STREQ(paths.currentDirectory, "/x/");
    EXPECT_STREQ(paths.currentPresetFile, "");
}
