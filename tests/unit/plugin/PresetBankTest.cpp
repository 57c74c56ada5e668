// The bank of 21 presets: the factory values, names, and the program calls.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>

#include "PluginHarness.h"
#include "presets/FactoryPresets.h"

using PresetBank = PluginTest;

TEST_F(PresetBank, FactoryPresets) {
    const char* names[21] = {"Flat",           "Mid Boost",         "Soft Contour",      "More Air",
                             "Bottom End",     "In Between",        "Low Kick",          "Car Audio",
                             "Female",         "Plexi",             "Headset",           "Comb",
                             "Baxandall High", "Nasal",             "Presence",          "Boxy",
                             "50Hz Odd & Even", "50Hz & Harmonics", "60Hz Odd & Even",   "60Hz & Harmonics",
                             "Spectrum Analyzer"};
    char text[64];
    for (int i = 0; i < 21; ++i) {
        std::memset(text, 'x', sizeof text);
        EXPECT_TRUE(p.getProgramNameIndexed(0, i, text));
        EXPECT_STREQ(text, names[i]);
    }
    EXPECT_FALSE(p.getProgramNameIndexed(0, 21, text));
    EXPECT_FALSE(p.getProgramNameIndexed(0, -1, text));

    // The table itself: in the running bank the analyzer and zoom slots are global, so
    // "Flat"'s SPAN value reached every preset when it was selected at start-up.
    presets::PresetRecord factory[presets::kPresetCount] = {};
    presets::loadFactoryBank(factory);
    // Spot checks against the preset table: "Car Audio"'s first band on both sides (type, frequency,
    // Q, gain) and its head and tail; the one preset with a band frequency of 0, "Comb"'s odd Q,
    // the analyzer preset's SPAN and a 60 Hz harmonic.
    const struct {
        int preset, slot;
        float value;
    } spots[] = {{7, 0, 0.75f},      {7, 3, 1.0f},   {7, 6, 0.107143f}, {7, 14, 0.107143f}, {7, 22, 0.112583f},
                 {7, 38, 0.71f},     {7, 54, 0.574722f}, {7, 61, 0.5f}, {7, 70, 0.45f},     {7, 71, 0.833333f},
                 {7, 84, 0.0f},      {7, 93, 0.0f},  {20, 72, 0.75f},   {19, 24, 0.15904f}, {15, 22, 0.0f},
                 {11, 42, 0.7563f},  {3, 1, 0.75f}};
    for (const auto& spot : spots) EXPECT_EQ(factory[spot.preset].values[spot.slot], spot.value) << spot.preset << "/" << spot.slot;
    EXPECT_STREQ(factory[7].name, "Car Audio");
    for (int preset = 0; preset < presets::kPresetCount; ++preset) {
        EXPECT_EQ(p.getPreset(preset)->values[params::kSpan], 0.75f);
        EXPECT_EQ(p.getPreset(preset)->values[params::kOutput], factory[preset].values[params::kOutput]);
    }
}

TEST_F(PresetBank, NamesAreStoredWithTheirLimit) {
    const std::pair<const char*, const char*> names[] = {
        {"ABCDEFGHIJKLMNOPQRSTUVW", "ABCDEFGHIJKLMNOPQRSTUVW"},          // 23 characters: all kept
        {"abcdefghijklmnopqrstuvwxyz0123", "abcdefghijklmnopqrstuvw"},   // longer: the first 23
        {"Hi", "Hi"}};
    char out[64];
    for (const auto& [name, kept] : names) {
        std::string text = name;
        p.setProgramName(text.data());
        p.getProgramName(out);
        EXPECT_STREQ(out, kept);
    }
    p.setPresetName("Renamed by editor");
    p.setPresetName(nullptr);  // only asks the host to refresh
    p.getProgramName(out);
    EXPECT_STREQ(out, "Renamed by editor");
    EXPECT_EQ(h.host.of(audioMasterUpdateDisplay).size(), 2u);
}

TEST_F(PresetBank, ResetToTemplateAndFileExclusions) {
    p.resetPresetToTemplate(3);
    p.selectPreset(3);
    EXPECT_STREQ(p.getPreset(3)->name, "Flat");
    for (int i = 0; i < 72; ++i) EXPECT_EQ(p.getParameter(i), p.getPreset(0)->values[i]) << i;

    // The template is preset 0 as it stood when the startup state was restored.
    p.selectPreset(0);
    p.setParameter(params::kOutput, 0.8f);
    p.restoreStartupState();
    p.resetPresetToTemplate(9);
    EXPECT_EQ(p.getPreset(9)->values[params::kOutput], 0.8f);
    p.resetPresetToTemplate(21);  // out of range: nothing

    // Files keep slots 0..84 and load 0..71: the global settings stay the user's.
    EXPECT_FALSE(p.isExcludedFromSave(84));
    EXPECT_TRUE(p.isExcludedFromSave(85));
    EXPECT_FALSE(p.isExcludedFromLoad(71));
    EXPECT_TRUE(p.isExcludedFromLoad(72));
}
