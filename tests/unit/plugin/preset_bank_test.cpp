// The bank of 21 presets: the factory values, names, and the program calls.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "PluginHarness.h"
#include "presets/FactoryPresets.h"

namespace {

struct Row {
    const char* name;
    double power, fat, lrms, linPhase, output, plotRange, span;
    double bands[8][4];
};

// Three presets transcribed from the product's preset table: whole presets compared field by field.
const Row kCarAudio = {"Car Audio", 0.75, 0, 0, 1, 0.5, 0.45, 0,
                       {{0.107143, 0.112583, 0.71, 0.574722}, {0.678571, 0.5, 0.5, 0.5},
                        {0.25, 0.514349, 0.3575, 0.549815}, {0.25, 0.227373, 0.74, 0.372349},
                        {0.25, 0.357616, 0.715, 0.359896}, {0.75, 0.5, 0.5, 0.5},
                        {0.321429, 0.766004, 0.5, 0.587176}, {0.964286, 0.5, 0.5, 0.5}}};
const Row kSixtyHz = {"60Hz & Harmonics", 1, 0, 0.25, 0.25, 0.5, 0, 0,
                      {{0.607143, 0.5, 0.5, 0.5}, {0.678571, 0.5, 0.5, 0.5}, {0.25, 0.15904, 1, 0.048},
                       {0.25, 0.259384, 0.958, 0.096}, {0.25, 0.359727, 0.942, 0.134},
                       {0.25, 0.46007, 0.992, 0.156}, {0.821429, 0.5, 0.5, 0.5}, {0.964286, 0.5, 0.5, 0.5}}};
const Row kAnalyzer = {"Spectrum Analyzer", 0.25, 0, 0.25, 0.25, 0.5, 0, 0.75,
                       {{0.607143, 0.5, 0.5, 0.5}, {0.678571, 0.5, 0.5, 0.5}, {0.75, 0.15904, 1, 0.048},
                        {0.75, 0.259384, 0.958, 0.096}, {0.75, 0.359727, 0.942, 0.134},
                        {0.75, 0.46007, 0.992, 0.156}, {0.821429, 0.5, 0.5, 0.5}, {0.964286, 0.5, 0.5, 0.5}}};

void expectPreset(const presets::PresetRecord& got, const Row& row) {
    EXPECT_STREQ(got.name, row.name);
    const double head[6] = {row.power, row.fat, row.lrms, row.linPhase, 0.0, row.output};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got.values[i], static_cast<float>(head[i])) << row.name << " slot " << i;
    for (int b = 0; b < 8; ++b)
        for (int f = 0; f < 4; ++f)
            for (int side = 0; side < 2; ++side) {
                const int slot = 6 + 16 * f + 8 * side + b;
                EXPECT_EQ(got.values[slot], static_cast<float>(row.bands[b][f])) << row.name << " slot " << slot;
            }
    const double tail[15] = {row.plotRange, 0.833333, row.span, 0, 0.15625, 0.03125, 0.09375, 0.03125,
                             0.03125,       0,        0,        0.666667, 0, 0.09375, 0};
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(got.values[70 + i], static_cast<float>(tail[i])) << row.name << " slot " << 70 + i;
    for (int slot = 85; slot < 94; ++slot) EXPECT_EQ(got.values[slot], 0.0f);
}

}  // namespace

class PresetBank : public ::testing::Test {
protected:
    PluginHarness h;
    Plugin& p = *h.plugin;
};

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
    expectPreset(factory[7], kCarAudio);
    expectPreset(factory[19], kSixtyHz);
    expectPreset(factory[20], kAnalyzer);
    // Spot checks elsewhere: the one preset with a band frequency of 0, and "Comb"'s odd Q.
    EXPECT_EQ(factory[15].values[22], 0.0f);
    EXPECT_EQ(factory[11].values[42], 0.7563f);
    EXPECT_EQ(factory[3].values[1], 0.75f);
    for (int preset = 0; preset < presets::kPresetCount; ++preset) {
        EXPECT_EQ(p.getPreset(preset)->values[72], 0.75f);
        EXPECT_EQ(p.getPreset(preset)->values[5], factory[preset].values[5]);
    }
}

TEST_F(PresetBank, SelectingAPresetAppliesItsValues) {
    p.selectPreset(7);
    EXPECT_EQ(p.step(6), 1);                       // low cut 24 dB/oct
    EXPECT_EQ(p.band(1, 2).bandType, 3);               // peaking on the right too
    EXPECT_NEAR(p.band(0, 3).frequency, 20.0 * std::pow(10.0, 3 * 0.227373), 1e-3);
    EXPECT_EQ(p.getParameter(0), 0.75f);
    EXPECT_EQ(p.getParameter(86), 0.0f);
    EXPECT_EQ(p.getParameter(94), -1.0f);
    EXPECT_EQ(p.getParameter(-1), -1.0f);
}

TEST_F(PresetBank, NamesAreStoredWithTheirLimit) {
    char out[64];
    char name23[] = "ABCDEFGHIJKLMNOPQRSTUVW";
    p.setProgramName(name23);
    p.getProgramName(out);
    EXPECT_STREQ(out, name23);
    char name30[] = "abcdefghijklmnopqrstuvwxyz0123";
    p.setProgramName(name30);
    p.getProgramName(out);
    EXPECT_STREQ(out, "abcdefghijklmnopqrstuvw");
    // A shorter name after a longer one: the field's rest is left as it was, behind the NUL.
    char shortName[] = "Hi";
    p.setProgramName(shortName);
    p.getProgramName(out);
    EXPECT_STREQ(out, "Hi");
    p.setPresetName("Renamed by editor");
    p.getProgramName(out);
    EXPECT_STREQ(out, "Renamed by editor");
    EXPECT_EQ(h.host.of(audioMasterUpdateDisplay).size(), 1u);
    p.setPresetName(nullptr);  // only asks the host to refresh
    EXPECT_EQ(h.host.of(audioMasterUpdateDisplay).size(), 2u);
}

TEST_F(PresetBank, ResetToTemplate) {
    p.resetPresetToTemplate(3);
    p.selectPreset(3);
    EXPECT_STREQ(p.getPreset(3)->name, "Flat");
    for (int i = 0; i < 72; ++i) EXPECT_EQ(p.getParameter(i), p.getPreset(0)->values[i]) << i;

    // The template is preset 0 as it stood when the startup state was restored.
    p.selectPreset(0);
    p.setParameter(5, 0.8f);
    p.restoreStartupState();
    p.resetPresetToTemplate(9);
    EXPECT_EQ(p.getPreset(9)->values[5], 0.8f);
    p.resetPresetToTemplate(21);  // out of range: nothing
}

TEST_F(PresetBank, ExclusionsFromFiles) {
    EXPECT_FALSE(p.isExcludedFromSave(84));
    EXPECT_TRUE(p.isExcludedFromSave(85));
    EXPECT_FALSE(p.isExcludedFromLoad(71));
    EXPECT_TRUE(p.isExcludedFromLoad(72));
}
