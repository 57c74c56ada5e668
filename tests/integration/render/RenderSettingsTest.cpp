// Presets, preset files, bank files and parameters as vireo-render hands them to the plug-in.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

// The --list-params line of a parameter: index, name, text, normalized value.
bool listsValue(const std::string& listing, const std::string& name, const std::string& value) {
    return std::regex_search(listing, std::regex("\\n? *[0-9]+  " + name + " +.* " + value + "\\n"));
}

class Settings : public RenderTest {};

TEST_F(Settings, SetByHostNameIsAppliedAndListed) {
    const RunResult r = run({"--set", "FLT1 Gain=0.75", "--set=Output=0.25", "--list-params"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(listsValue(r.out, "FLT1 Gain", "0.750000")) << r.out;
    EXPECT_TRUE(listsValue(r.out, "Output", "0.250000")) << r.out;
    EXPECT_GE(std::count(r.out.begin(), r.out.end(), '\n'), 85) << "one line per parameter";
}

TEST_F(Settings, PresetByNameOrIndexIsSelected) {
    for (const char* which : {"Mid Boost", "1", "mid boost"}) {
        const RunResult r = run({"--preset", which, "--list-presets"});
        ASSERT_EQ(r.exitCode, 0) << which << ": " << r.err;
        EXPECT_NE(r.out.find("*  1  Mid Boost\n"), std::string::npos) << which << ":\n" << r.out;
    }
    EXPECT_NE(run({"--preset", "0", "--list-params"}).out, run({"--preset", "1", "--list-params"}).out);
    writeShorts(path("in.wav"), kWav16, 44100, 2, testShorts(2000, 2));
    const RunResult render = run({"--preset", "Mid Boost", "in.wav", "out.wav"});
    ASSERT_EQ(render.exitCode, 0) << render.err;
    EXPECT_NE(render.out.find("preset   \"Mid Boost\""), std::string::npos) << render.out;
}

TEST_F(Settings, PresetFileGivesTheSameResultAsTheSameValuesSet) {
    // The values a fresh instance starts with, read through the binary interface, with band 3
    // as a peaking filter on both sides and a lower output level.
    auto plugin = loadPlugin();
    ASSERT_TRUE(plugin);
    std::vector<float> values(kSavedSlots);
    for (int slot = 0; slot < kSavedSlots; ++slot) values[slot] = plugin->getParameter(slot);
    const std::pair<const char*, float> changes[] = {
        {"FLT3 Type", 0.25f}, {"FLT3 TypeR", 0.25f}, {"FLT3 Freq", 0.5f},    {"FLT3 Freq R", 0.5f}, {"FLT3 Q", 0.75f},
        {"FLT3 Q R", 0.75f},  {"FLT3 Gain", 0.75f},  {"FLT3 Gain R", 0.75f}, {"Output", 0.375f}};
    std::vector<std::string> setArgs;
    for (const auto& [name, value] : changes) {
        const int slot = plugin->findParameter(name);
        ASSERT_GE(slot, 0) << name;
        values[slot] = value;
        setArgs.insert(setArgs.end(), {"--set", std::string(name) + "=" + std::to_string(value)});
    }
    plugin.reset();

    // The preset image, field by field, once in each byte order.
    for (bool bigEndian : {false, true}) {
        ImageWriter w(bigEndian);
        w.header(kTypePreset, 1 + kSavedSlots, 0, kNameRecordBytes + kSavedSlots * kValueRecordBytes);
        w.nameRecord(0, "Hand Made");
        for (int slot = 0; slot < kSavedSlots; ++slot) w.valueRecord(0, slot, values[slot]);
        w.save(path(bigEndian ? "hand-be.tyx" : "hand.tyx"));
    }

    const auto input = testFloats(20000, 2);
    writeFloats(path("in.wav"), kWavFloat, 48000, 2, input);
    auto bySet = [&](std::vector<std::string> more) {
        return more.insert(more.begin(), setArgs.begin(), setArgs.end()), run(more);
    };
    ASSERT_EQ(bySet({"in.wav", "by-set.wav"}).exitCode, 0);
    ASSERT_EQ(run({"--preset-file", "hand.tyx", "in.wav", "by-file.wav"}).exitCode, 0);
    const Audio a = readAudio(path("by-set.wav"));
    ASSERT_EQ(a.floats.size(), input.size());
    EXPECT_EQ(a.floats, readAudio(path("by-file.wav")).floats);

    // The same parameters, whichever way they came and in whichever byte order the file was.
    const std::string expected = bySet({"--list-params"}).out;
    EXPECT_EQ(run({"--preset-file", "hand.tyx", "--list-params"}).out, expected);
    EXPECT_EQ(run({"--preset-file", "hand-be.tyx", "--list-params"}).out, expected);

    // The file lands in the current preset, which stays selected.
    const RunResult presets = run({"--preset", "2", "--preset-file", "hand.tyx", "--list-presets"});
    EXPECT_NE(presets.out.find("*  2  Hand Made\n"), std::string::npos) << presets.out;
}

TEST_F(Settings, BankFileReplacesTheBankAndOpensOnItsFirstPreset) {
    constexpr int kPresets = 21;
    ImageWriter w;
    // The stored current preset (7) is not where a loaded bank opens.
    w.header(kTypeBank, kPresets * 2, 7, kPresets * (kNameRecordBytes + kValueRecordBytes));
    for (int p = 0; p < kPresets; ++p)
        w.nameRecord(p, "Bank " + std::to_string(p)).valueRecord(p, 5, static_cast<float>(p + 1) / 32.0f);  // Output
    w.save(path("mine.tyb"));

    const RunResult listed = run({"--bank-file", "mine.tyb", "--list-presets"});
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_NE(listed.out.find("*  0  Bank 0\n"), std::string::npos) << listed.out;
    EXPECT_NE(listed.out.find("  20  Bank 20\n"), std::string::npos) << listed.out;
    const RunResult chosen = run({"--bank-file", "mine.tyb", "--preset", "Bank 5", "--list-params"});
    ASSERT_EQ(chosen.exitCode, 0) << chosen.err;
    EXPECT_TRUE(listsValue(chosen.out, "Output", "0.187500")) << chosen.out;
}

}  // namespace
}  // namespace rendertest
