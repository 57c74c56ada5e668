// The bank at the binary boundary: chunks of the built library, files and stored defaults
// shared between the library a host loads and the classes linked into this test.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "host/VstHost.h"
#include "plugin/Plugin.h"
#include "gui/Editor.h"
#include "unit/presets/ImageBytes.h"
#include "unit/presets/PresetTestEffect.h"

using imagebytes::Bytes;
using imagebytes::handValue;

namespace {

constexpr int kPresets = 21;
constexpr int kUsedParameters = 85;

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

std::vector<std::string> namesOf(vsthost::LoadedPlugin& p) {
    std::vector<std::string> names;
    for (int i = 0; i < kPresets; ++i) names.push_back(p.programNameIndexed(i));
    return names;
}

std::vector<float> parametersOf(vsthost::LoadedPlugin& p) {
    std::vector<float> values;
    for (int i = 0; i < kUsedParameters; ++i) values.push_back(p.getParameter(i));
    return values;
}

// A bank image of 21 hand-made presets with every saved slot, as a chunk.
std::vector<uint8_t> handChunk(int current, float badValue = 0.0f, int badPreset = -1) {
    Bytes b;
    b.u32(0x02000000).magic();
    const int records = kPresets * 86;
    b.header(0x38, records, current, kPresets * (168 + 85 * 32));
    for (int p = 0; p < kPresets; ++p) {
        b.nameRecord(p, "Hand " + std::to_string(p));
        for (int s = 0; s < 85; ++s) b.valueRecord(p, s, p == badPreset && s == 30 ? badValue : handValue(p, s));
    }
    return b.data;
}

void writeBytes(const std::string& path, const uint8_t* data, size_t size) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(data), size);
}

std::vector<uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

class BankAtTheBoundary : public ::testing::Test {
protected:
    ScopedStoreFolder folder;  // before any instance: no stored defaults of the machine leak in
};

}  // namespace

TEST_F(BankAtTheBoundary, FreshChunkIs60697BytesAndStable) {
    auto plugin = loadLibrary();
    ASSERT_TRUE(plugin);
    const auto chunk = plugin->getChunk();
    ASSERT_EQ(chunk.size(), 60697u);  // 8 + 41 + 21 * (168 + 85 * 32)
    EXPECT_EQ(plugin->getChunk(), chunk);
    EXPECT_EQ(plugin->getChunk(true), chunk);  // the preset flag is ignored: the bank travels whole
    const std::vector<uint8_t> head = {0, 0, 0, 2, 0x72, 0x76, 0x58, 0x54, 0x72, 0x76, 0x58, 0x54, 0x38, 0, 0, 0, 2};
    EXPECT_TRUE(std::equal(head.begin(), head.end(), chunk.begin()));
}

TEST_F(BankAtTheBoundary, ChunkIntoASecondInstanceReproducesEveryPreset) {
    auto first = loadLibrary();
    auto second = loadLibrary();
    ASSERT_TRUE(first && second);
    // Make the second instance differ everywhere first.
    const auto hand = handChunk(6);
    ASSERT_EQ(second->setChunk(hand.data(), hand.size()), 0);
    EXPECT_EQ(second->programNameIndexed(20), "Hand 20");
    EXPECT_EQ(second->getParameter(3), handValue(6, 3));
    ASSERT_NE(second->getChunk(), first->getChunk());

    const auto chunk = first->getChunk();
    ASSERT_EQ(second->setChunk(chunk.data(), chunk.size()), 0);
    EXPECT_EQ(second->getChunk(), chunk);
    EXPECT_EQ(namesOf(*second), namesOf(*first));
    EXPECT_EQ(parametersOf(*second), parametersOf(*first));
    EXPECT_EQ(second->programName(), "Flat");
}

TEST_F(BankAtTheBoundary, ChangedBankSurvivesAChunkRoundTrip) {
    auto first = loadLibrary();
    auto second = loadLibrary();
    ASSERT_TRUE(first && second);
    const auto hand = handChunk(9);
    ASSERT_EQ(first->setChunk(hand.data(), hand.size()), 0);
    EXPECT_EQ(first->programName(), "Hand 9");
    first->setParameter(5, 0.8125f);
    first->setParameter(30, 0.25f);
    first->setProgramName("Changed");

    const auto chunk = first->getChunk();
    ASSERT_EQ(chunk.size(), 60697u);
    ASSERT_EQ(second->setChunk(chunk.data(), chunk.size()), 0);
    EXPECT_EQ(second->getChunk(), chunk);
    EXPECT_EQ(second->programName(), "Changed");
    EXPECT_EQ(second->getParameter(5), 0.8125f);
    EXPECT_EQ(second->getParameter(30), 0.25f);
    EXPECT_EQ(parametersOf(*second), parametersOf(*first));
    for (int p = 0; p < kPresets; ++p) {
        if (p != 9) {
            EXPECT_EQ(second->programNameIndexed(p), "Hand " + std::to_string(p));
        }
    }
}

TEST_F(BankAtTheBoundary, RefusedOrDamagedChunksLeaveTheBankAsItWas) {
    auto plugin = loadLibrary();
    ASSERT_TRUE(plugin);
    const auto hand = handChunk(3);
    ASSERT_EQ(plugin->setChunk(hand.data(), hand.size()), 0);
    const auto before = plugin->getChunk();
    const auto params = parametersOf(*plugin);

    const auto bad = handChunk(0, 1.5f, 20);
    EXPECT_EQ(plugin->setChunk(bad.data(), bad.size()), 0);
    EXPECT_EQ(plugin->setChunk(hand.data(), 7), -1);
    auto foreign = hand;
    foreign[4] = 'x';
    EXPECT_EQ(plugin->setChunk(foreign.data(), foreign.size()), -1);
    Bytes legacyZero;
    legacyZero.u32(0x01000000).magic().i32(0).i32(0).zeros(16 + 400);
    EXPECT_EQ(plugin->setChunk(legacyZero.ptr(), legacyZero.size()), -1);
    EXPECT_EQ(plugin->dispatch(effSetChunk, 0, 100, nullptr), 0);  // no data: the host gets nothing done

    EXPECT_EQ(plugin->getChunk(), before);
    EXPECT_EQ(parametersOf(*plugin), params);
    EXPECT_EQ(plugin->programName(), "Hand 3");
}

TEST_F(BankAtTheBoundary, LegacyChunkLoadsThroughTheLibrary) {
    auto plugin = loadLibrary();
    ASSERT_TRUE(plugin);
    Bytes legacy(true);  // written by a big-endian machine
    legacy.u32(0x01000000).magic().i32(2).i32(1).zeros(16);
    for (int p = 0; p < 2; ++p) {
        legacy.text("Legacy " + std::to_string(p));
        for (int s = 0; s < 94; ++s) legacy.f32(handValue(p, s));
    }
    ASSERT_EQ(plugin->setChunk(legacy.ptr(), legacy.size()), 0);
    EXPECT_EQ(plugin->programNameIndexed(0), "Legacy 0");
    EXPECT_EQ(plugin->programName(), "Legacy 1");
    EXPECT_EQ(plugin->programNameIndexed(2), "Soft Contour");
    EXPECT_EQ(plugin->getParameter(54), handValue(1, 54));
}

TEST_F(BankAtTheBoundary, BankFilesAreTheChunksImage) {
    auto library = loadLibrary();
    ASSERT_TRUE(library);
    const auto hand = handChunk(0);
    ASSERT_EQ(library->setChunk(hand.data(), hand.size()), 0);
    library->setParameter(6, 0.25f);
    library->setProgramName("From the library");
    const auto chunk = library->getChunk();

    // The library's bank as a bank file, loaded by a linked instance.
    const std::string fromLibrary = folder.scratch() + "/from-library.tyb";
    writeBytes(fromLibrary, chunk.data() + 8, chunk.size() - 8);
    auto instance = std::make_unique<Plugin>(&quietHost);
    Plugin& linked = *instance;
    ASSERT_TRUE(linked.getPluginEditor()->loadBankFile(fromLibrary));
    char name[32];
    linked.getProgramName(name);
    EXPECT_STREQ(name, "From the library");
    EXPECT_EQ(linked.getParameter(6), 0.25f);

    // Changed there, saved as a file, and taken back by the library as a chunk.
    linked.selectPreset(12);
    linked.setParameter(40, 0.125f);
    linked.setPresetName("Round trip");
    const std::string fromLinked = folder.scratch() + "/from-linked.tyb";
    ASSERT_TRUE(linked.getPluginEditor()->saveBankFile(fromLinked));
    ASSERT_TRUE(linked.getPluginEditor()->loadBankFile(fromLinked));
    EXPECT_EQ(linked.getCurrentPreset(), 0);
    const auto file = fileBytes(fromLinked);
    ASSERT_EQ(file.size(), 60689u);

    std::vector<uint8_t> asChunk = {0, 0, 0, 2, 0x72, 0x76, 0x58, 0x54};
    asChunk.insert(asChunk.end(), file.begin(), file.end());
    ASSERT_EQ(library->setChunk(asChunk.data(), asChunk.size()), 0);
    EXPECT_EQ(library->getChunk(), asChunk);
    EXPECT_EQ(library->programNameIndexed(12), "Round trip");
    EXPECT_EQ(library->programNameIndexed(0), "From the library");
    // A chunk keeps the image's current preset (12 when the file was saved); only a bank file
    // opens at preset 0.
    EXPECT_EQ(library->programName(), "Round trip");
    EXPECT_EQ(library->getParameter(40), 0.125f);
}

TEST_F(BankAtTheBoundary, DefaultsStoredByOneInstanceStartTheNext) {
    {
        auto instance = std::make_unique<Plugin>(&quietHost);
        Plugin& linked = *instance;
        for (int p = 0; p < kPresets; ++p) {
            linked.selectPreset(p);
            for (int s = 0; s <= 71; ++s) linked.setParameter(s, handValue(p + 100, s));
            linked.setPresetName(("Stored " + std::to_string(p)).c_str());
        }
        ASSERT_TRUE(linked.getPluginEditor()->storeDefaultBank());
        linked.selectPreset(4);
        linked.setPresetName("Default preset");
        ASSERT_TRUE(linked.getPluginEditor()->storeDefaultPreset());
    }
    auto library = loadLibrary();
    ASSERT_TRUE(library);
    EXPECT_EQ(library->programName(), "Default preset");
    EXPECT_EQ(library->programNameIndexed(0), "Default preset");
    EXPECT_EQ(library->programNameIndexed(4), "Stored 4");
    EXPECT_EQ(library->programNameIndexed(20), "Stored 20");
    for (int s = 0; s <= 71; ++s) EXPECT_EQ(library->getParameter(s), handValue(104, s)) << s;
}
