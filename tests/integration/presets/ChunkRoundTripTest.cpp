// The bank at the binary boundary: chunks of the built library, files and stored defaults
// shared between the library a host loads and the classes linked into this test.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "gui/Editor.h"
#include "host/VstHost.h"
#include "plugin/Plugin.h"
#include "unit/presets/PresetTestSupport.h"

using namespace imagebytes;

namespace {

std::unique_ptr<vsthost::LoadedPlugin> loadLibrary() {
    std::string error;
    auto plugin = vsthost::LoadedPlugin::load(TYX_PLUGIN_PATH, &error);
    EXPECT_TRUE(plugin) << error;
    if (plugin) {
        plugin->open();
        plugin->setSampleRate(44100.0f);
        plugin->setBlockSize(512);
    }
    return plugin;
}

VstIntPtr quietHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

std::vector<float> parametersOf(vsthost::LoadedPlugin& p) {
    std::vector<float> values;
    for (int i = 0; i < 85; ++i) values.push_back(p.getParameter(i));
    return values;
}

class BankAtTheBoundary : public ::testing::Test {
protected:
    ScopedStoreFolder folder;  // before any instance: no stored defaults of the machine leak in
};

}  // namespace

TEST_F(BankAtTheBoundary, ChunksCarryTheWholeBankBetweenInstances) {
    auto first = loadLibrary();
    auto second = loadLibrary();
    ASSERT_TRUE(first && second);
    const auto fresh = first->getChunk();
    ASSERT_EQ(fresh.size(), 60697u);  // 8 + 41 + 21 * (168 + 85 * 32)
    EXPECT_EQ(first->getChunk(true), fresh);  // the preset flag is ignored: the bank travels whole

    // A hand-written chunk into the second instance, changed there, then into the first.
    const auto hand = handChunk(false, 9, "Hand");
    ASSERT_EQ(second->setChunk(hand.data(), hand.size()), 0);
    EXPECT_EQ(second->programName(), "Hand 9");
    EXPECT_EQ(second->getParameter(params::kLinPhase), handValue(9, params::kLinPhase));
    second->setParameter(params::kOutput, 0.8125f);
    second->setProgramName("Changed");
    const auto changed = second->getChunk();
    ASSERT_EQ(changed.size(), 60697u);
    ASSERT_EQ(first->setChunk(changed.data(), changed.size()), 0);
    EXPECT_EQ(first->getChunk(), changed);
    EXPECT_EQ(first->programName(), "Changed");
    EXPECT_EQ(first->getParameter(params::kOutput), 0.8125f);
    EXPECT_EQ(parametersOf(*first), parametersOf(*second));
    EXPECT_EQ(first->programNameIndexed(20), "Hand 20");

    // And the fresh chunk puts the factory bank back.
    ASSERT_EQ(second->setChunk(fresh.data(), fresh.size()), 0);
    EXPECT_EQ(second->getChunk(), fresh);
    EXPECT_EQ(second->programName(), "Flat");
}

TEST_F(BankAtTheBoundary, BankFilesAreTheChunksImage) {
    auto library = loadLibrary();
    ASSERT_TRUE(library);
    const auto hand = handChunk(false, 0, "Hand");
    ASSERT_EQ(library->setChunk(hand.data(), hand.size()), 0);
    library->setParameter(params::kType, 0.25f);
    library->setProgramName("From the library");
    const auto chunk = library->getChunk();

    // The library's bank as a bank file, loaded by a linked instance.
    const std::string fromLibrary = folder.scratch() + "/from-library.tyb";
    writeBytes(fromLibrary, std::vector<uint8_t>(chunk.begin() + 8, chunk.end()));
    auto linked = std::make_unique<Plugin>(&quietHost);
    ASSERT_TRUE(linked->getPluginEditor()->loadBankFile(fromLibrary));
    char name[32];
    linked->getProgramName(name);
    EXPECT_STREQ(name, "From the library");
    EXPECT_EQ(linked->getParameter(params::kType), 0.25f);

    // Changed there, saved as a file, and taken back by the library as a chunk.
    linked->selectPreset(12);
    linked->setParameter(params::kQ + 2, 0.125f);
    linked->setPresetName("Round trip");
    const std::string fromLinked = folder.scratch() + "/from-linked.tyb";
    ASSERT_TRUE(linked->getPluginEditor()->saveBankFile(fromLinked));
    const auto file = fileBytes(fromLinked);
    ASSERT_EQ(file.size(), 60689u);
    std::vector<uint8_t> asChunk = {0, 0, 0, 2, 0x72, 0x76, 0x58, 0x54};
    asChunk.insert(asChunk.end(), file.begin(), file.end());
    ASSERT_EQ(library->setChunk(asChunk.data(), asChunk.size()), 0);
    EXPECT_EQ(library->getChunk(), asChunk);
    EXPECT_EQ(library->programNameIndexed(0), "From the library");
    // A chunk keeps the image's current preset; only a bank file opens at preset 0.
    EXPECT_EQ(library->programName(), "Round trip");
    EXPECT_EQ(library->getParameter(params::kQ + 2), 0.125f);
}

// The order in which stored defaults come in is checked on linked instances; here only that the
// library a host loads reads the same store.
TEST_F(BankAtTheBoundary, DefaultsStoredByOneInstanceStartTheNext) {
    {
        auto linked = std::make_unique<Plugin>(&quietHost);
        for (int s = 0; s <= 71; ++s) linked->setParameter(s, handValue(104, s));
        linked->setPresetName("Default preset");
        ASSERT_TRUE(linked->getPluginEditor()->storeDefaultPreset());
    }
    auto library = loadLibrary();
    ASSERT_TRUE(library);
    EXPECT_EQ(library->programName(), "Default preset");
    for (int s = 0; s <= 71; ++s) EXPECT_EQ(library->getParameter(s), handValue(104, s)) << s;
}
