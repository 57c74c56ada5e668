// The parameter set as a host sees it: names, labels, texts, properties, automation, and
// the behaviour of setting values through the plug-in's own entry points.

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "PluginFixture.h"

namespace {

// Names in index order, written out here rather than derived from the product's tables.
std::vector<std::string> expectedNames() {
    std::vector<std::string> n = {"Power", "FAT", "LR<>MS", "LinPhase", "Resolution", "Output"};
    const char* patterns[8] = {"FLT%d Type", "FLT%d TypeR", "FLT%d Freq", "FLT%d Freq R",
                               "FLT%d Q",    "FLT%d Q R",   "FLT%d Gain", "FLT%d Gain R"};
    for (const char* p : patterns)
        for (int band = 1; band <= 8; ++band) {
            char s[32];
            std::snprintf(s, sizeof s, p, band);
            n.push_back(s);
        }
    for (const char* s : {"PlotRange", "Channel", "SPAN", "SPANType", "SPANColor", "SPANSpeed", "SPANMode",
                          "SPANHold", "SPANResp", "Solo", "AutoZoom", "SPANDrive", "SPANWidth", "SPANFilter",
                          "Listen"})
        n.push_back(s);
    while (n.size() < 94) n.push_back("dummy");
    return n;
}

// Factory preset "Flat" as listed in the product's preset table, with the user's global
// settings of a first run (nothing stored) in the analyzer and zoom slots.
std::vector<float> flatPreset() {
    std::vector<double> v(94, 0.0);
    const double head[6] = {1, 0, 0, 1, 0, 0.5};
    for (int i = 0; i < 6; ++i) v[i] = head[i];
    const double bands[8][4] = {{0.607143, 0.132647, 0.5, 0.5}, {0.678571, 0.23299, 0.5, 0.5},
                                {0.75, 0.365637, 0.5, 0.5},     {0.75, 0.46598, 0.5, 0.5},
                                {0.75, 0.566323, 0.5, 0.5},     {0.75, 0.666667, 0.5, 0.5},
                                {0.821429, 0.899657, 0.5, 0.5}, {0.964286, 0.958354, 0.5, 0.5}};
    for (int b = 0; b < 8; ++b)
        for (int f = 0; f < 4; ++f) v[6 + 16 * f + b] = v[14 + 16 * f + b] = bands[b][f];
    const double tail[15] = {0.5,     0.833333, 0.75,    0,     0.15625,  0.03125, 0.09375, 0.03125,
                             0.03125, 0,        0,       0.666667, 0,     0.09375, 0};
    for (int i = 0; i < 15; ++i) v[70 + i] = tail[i];
    std::vector<float> f(v.begin(), v.end());
    for (int i : {73, 74, 75, 76, 77, 78, 82}) f[i] = 1.0f / 32;
    f[83] = 3.0f / 32;
    f[80] = 0.25f;
    return f;
}

}  // namespace

using Parameters = LoadedPluginTest;

TEST_F(Parameters, NamesLabelsAndStartValues) {
    const auto names = expectedNames();
    const auto flat = flatPreset();
    for (int i = 0; i < 94; ++i) {
        EXPECT_EQ(plugin->parameterName(i), names[i]) << i;
        const bool hz = i >= 22 && i <= 37;
        const bool db = i == 5 || (i >= 54 && i <= 70);
        EXPECT_EQ(plugin->parameterLabel(i), hz ? "Hz" : db ? "dB" : "") << i;
        EXPECT_EQ(plugin->getParameter(i), flat[i]) << i;
    }
}

TEST_F(Parameters, TextsOfTheStartPreset) {
    const std::vector<std::string> head = {"ON", "OFF", "LR", "ON", "LOW", "0.000000"};
    const char* freq[8] = {"50", "100", "250", "500", "1000", "2000", "10000", "15000"};
    const char* q[8] = {"0.7", "0.7", "1.0", "1.0", "1.0", "1.0", "0.7", "0.7"};  // bands 3..6 peaking
    const std::vector<std::string> tail = {"8.485281", "LINK", "",    "1/3 OCT", "GREY",   "FAST",  "PEAK",
                                           "OFF",      "FLAT", "---", "OFF",     "+12.0dB", "WIDE", "SELECT",
                                           "OFF"};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(plugin->parameterDisplay(i), head[i]) << i;
    for (int side = 0; side < 2; ++side)
        for (int b = 0; b < 8; ++b) {
            EXPECT_EQ(plugin->parameterDisplay(6 + 8 * side + b), "BYPASS");
            EXPECT_EQ(plugin->parameterDisplay(22 + 8 * side + b), freq[b]);
            EXPECT_EQ(plugin->parameterDisplay(38 + 8 * side + b), q[b]) << b;
            EXPECT_EQ(plugin->parameterDisplay(54 + 8 * side + b), "0");
        }
    for (int i = 0; i < 15; ++i) EXPECT_EQ(plugin->parameterDisplay(70 + i), tail[i]) << 70 + i;
    for (int i = 85; i < 94; ++i) EXPECT_EQ(plugin->parameterDisplay(i), "") << i;
}

TEST_F(Parameters, PropertiesAndAutomation) {
    for (int i = 0; i < 94; ++i) {
        VstParameterProperties p;
        std::memset(&p, 0x5A, sizeof p);
        ASSERT_TRUE(plugin->parameterProperties(i, p)) << i;
        int maxInteger = -1;
        if (i <= 3 || i == 80) maxInteger = 1;
        if (i == 4 || i == 71) maxInteger = 2;
        if (i >= 6 && i <= 21) maxInteger = 13;
        if (i == 72 || i == 74 || i == 75 || i == 76 || i == 77 || i == 82 || i == 83) maxInteger = 15;
        if (maxInteger >= 0) {
            EXPECT_EQ(p.flags, kVstParameterUsesIntStep) << i;
            EXPECT_EQ(p.minInteger, 0) << i;
            EXPECT_EQ(p.maxInteger, maxInteger) << i;
            EXPECT_EQ(p.stepInteger, 1) << i;
            EXPECT_EQ(p.largeStepInteger, 1) << i;
        } else {
            EXPECT_EQ(p.flags, kVstParameterUsesFloatStep) << i;
            EXPECT_FLOAT_EQ(p.stepFloat, i == 5 ? 1.0f / 24 : 0.01f) << i;
            EXPECT_FLOAT_EQ(p.smallStepFloat, i == 5 ? 1.0f / 240 : 0.0001f) << i;
        }
        EXPECT_EQ(p.label[0], 0x5A) << "fields not named are left untouched";
        EXPECT_EQ(plugin->canBeAutomated(i), i == 0 || (i >= 5 && i <= 69)) << i;
    }
}

TEST_F(Parameters, StepsAtTheEdges) {
    struct Stepped {
        int index;
        int steps;
        std::vector<std::string> texts;  // by step, for the steps that have one
    };
    const std::vector<Stepped> stepped = {
        {0, 2, {"OFF", "ON"}},
        {2, 2, {"LR", "MS"}},
        {4, 3, {"LOW", "MED", "HIGH"}},
        {6, 14, {"LOWCUT 12dB/oct", "LOWCUT 24dB/oct", "LOWSHELF", "PEAKING", "HIGHSHELF", "HICUT 12dB/oct",
                 "HICUT 24dB/oct", "BYPASS", "BYPASS", "BYPASS", "BYPASS", "BYPASS", "BYPASS", "BYPASS"}},
        {71, 3, {"LEFT", "RIGHT", "LINK"}},
        {74, 16, {"GREY", "CYAN", "BROWN", "RAINBOW", "undef"}},
        {75, 16, {"FAST", "MEDIUM", "SLOW", "MED/FAST", "SLOW/MED", "undef"}},
        {77, 16, {"OFF", "500ms", "1000ms", "2000ms", "5000ms", "INFINITE", "undef"}},
        {78, 16, {"FLAT", "A-WGHTD", "C-WGHTD", "undef"}},
        {82, 16, {"WIDE", "MEDIUM", "NARROW", "undef"}},
        {83, 16, {"RESP", "SELECT", "undef"}},
        {84, 3, {"OFF", "L(M)", "R(S)"}},
    };
    auto textOf = [](const Stepped& s, int k) { return s.texts[std::min<size_t>(k, s.texts.size() - 1)]; };
    for (const Stepped& s : stepped) {
        for (int k = 0; k < s.steps; ++k) {
            plugin->setParameter(s.index, (k + 0.5f) / s.steps);
            EXPECT_EQ(plugin->parameterDisplay(s.index), textOf(s, k)) << s.index << " step " << k;
        }
        plugin->setParameter(s.index, 0.0f);
        EXPECT_EQ(plugin->parameterDisplay(s.index), textOf(s, 0)) << s.index;
        plugin->setParameter(s.index, 1.0f);  // the top value belongs to the last step
        EXPECT_EQ(plugin->parameterDisplay(s.index), textOf(s, s.steps - 1)) << s.index;
        EXPECT_EQ(plugin->getParameter(s.index), 1.0f) << "values are kept as received";
        plugin->setParameter(s.index, 1.5f);  // out of range: stored, step limited
        EXPECT_EQ(plugin->parameterDisplay(s.index), textOf(s, s.steps - 1)) << s.index;
        EXPECT_EQ(plugin->getParameter(s.index), 1.5f);
    }
    // Exact step boundaries where the value is representable: n = 2 and 16.
    plugin->setParameter(0, 0.5f);
    EXPECT_EQ(plugin->parameterDisplay(0), "ON");
    plugin->setParameter(0, 0.49f);
    EXPECT_EQ(plugin->parameterDisplay(0), "OFF");
    plugin->setParameter(74, 3.0f / 16);
    EXPECT_EQ(plugin->parameterDisplay(74), "RAINBOW");
    plugin->setParameter(74, std::nextafter(3.0f / 16, 0.0f));
    EXPECT_EQ(plugin->parameterDisplay(74), "BROWN");
    // A SPANColor value of step 6 is kept and reads as undefined.
    plugin->setParameter(74, 0.40625f);
    EXPECT_EQ(plugin->parameterDisplay(74), "undef");
    // Values no host should send still answer something defined.
    plugin->setParameter(4, std::nanf(""));
    EXPECT_EQ(plugin->parameterDisplay(4), "HIGH");
    plugin->setParameter(4, -100.0f);
    plugin->setParameter(6, -100.0f);
    plugin->parameterDisplay(4);
    plugin->parameterDisplay(6);
}

TEST_F(Parameters, ValueTextsAndPreviews) {
    plugin->setParameter(22, 0.5f);
    EXPECT_EQ(plugin->parameterDisplay(22), "632");
    EXPECT_EQ(plugin->parameterPreview(22, 1.5f), "20000");
    EXPECT_EQ(plugin->parameterPreview(22, 0.0f), "20");
    EXPECT_EQ(plugin->parameterPreview(22, 1.0f / 3), "200");

    EXPECT_EQ(plugin->parameterPreview(54, 0.55f), "2.4");
    plugin->setParameter(54, 0.55f);
    EXPECT_EQ(plugin->parameterDisplay(54), "2");
    plugin->setParameter(54, 0.75f);
    EXPECT_EQ(plugin->parameterDisplay(54), "12");

    // A switched-off peaking band keeps the peaking Q mapping.
    plugin->setParameter(6, 0.75f);
    plugin->setParameter(38, 1.0f);
    EXPECT_EQ(plugin->parameterDisplay(6), "BYPASS");
    EXPECT_EQ(plugin->parameterDisplay(38), "20.0");
    EXPECT_EQ(plugin->parameterPreview(38, 0.5f), "1.0");
    plugin->setParameter(6, 1.5f / 14);  // step 1: low cut 24 dB/oct
    EXPECT_EQ(plugin->parameterPreview(38, 0.5f), "0.7");
    EXPECT_EQ(plugin->parameterPreview(6, 0.25f), "PEAKING");
    EXPECT_EQ(plugin->parameterPreview(6, 0.75f), "BYPASS");

    EXPECT_EQ(plugin->parameterPreview(71, 0.3f), "LEFT");
    EXPECT_EQ(plugin->parameterDisplay(71), "LINK");
    EXPECT_EQ(plugin->parameterPreview(4, 0.5f), "MED");
    EXPECT_EQ(plugin->parameterPreview(2, 0.9f), "MS");
    EXPECT_EQ(plugin->parameterPreview(74, 0.40625f), "undef");
    EXPECT_EQ(plugin->parameterPreview(73, 0.5f), "n/a");

    plugin->setParameter(81, 0.0f);
    EXPECT_EQ(plugin->parameterDisplay(81), "-12.0dB");
    plugin->setParameter(81, 1.0f);
    EXPECT_EQ(plugin->parameterDisplay(81), "+24.0dB");
    plugin->setParameter(81, 1.0f / 3);
    EXPECT_EQ(plugin->parameterDisplay(81), "+0.0dB");
    EXPECT_EQ(plugin->parameterPreview(81, -3.0f), "-12.0dB");

    EXPECT_EQ(plugin->parameterDisplay(5), "0.000000");
    EXPECT_EQ(plugin->parameterPreview(5, 0.0f), "-12.0000");
    plugin->setParameter(70, 0.0f);
    EXPECT_EQ(plugin->parameterDisplay(70), "24.00000");
    EXPECT_EQ(plugin->parameterPreview(70, 1.0f), "3.000000");

    // Listen and SPANFilter have no preview: the stored step answers.
    plugin->setParameter(84, 0.5f);
    EXPECT_EQ(plugin->parameterPreview(84, 0.0f), "L(M)");
    EXPECT_EQ(plugin->parameterPreview(83, 0.0f), "SELECT");
    EXPECT_EQ(plugin->parameterPreview(79, 0.9f), "---");
}

TEST_F(Parameters, LinkedSides) {
    // LINK: the left/mid parameter drives both sides.
    plugin->setParameter(22, 0.5f);
    EXPECT_EQ(plugin->getParameter(30), 0.5f);
    EXPECT_EQ(plugin->parameterDisplay(30), "632");
    // ... and the right/side parameter alone records its value but changes nothing.
    plugin->setParameter(30, 0.0f);
    EXPECT_EQ(plugin->getParameter(30), 0.0f);
    EXPECT_EQ(plugin->parameterDisplay(30), "632");
    plugin->setParameter(6, 0.25f);
    EXPECT_EQ(plugin->getParameter(14), 0.25f);
    EXPECT_EQ(plugin->parameterDisplay(14), "PEAKING");
    plugin->setParameter(14, 0.0f);
    EXPECT_EQ(plugin->parameterDisplay(14), "PEAKING");

    // LEFT and RIGHT: each side is its own.
    plugin->setParameter(71, 0.0f);
    EXPECT_EQ(plugin->parameterDisplay(71), "LEFT");
    plugin->setParameter(62, 0.75f);
    EXPECT_EQ(plugin->parameterDisplay(62), "12");
    plugin->setParameter(54, 0.25f);
    EXPECT_EQ(plugin->parameterDisplay(54), "-12");
    EXPECT_EQ(plugin->parameterDisplay(62), "12");
    EXPECT_EQ(plugin->getParameter(62), 0.75f);
    plugin->setParameter(71, 0.5f);  // RIGHT
    EXPECT_EQ(plugin->parameterDisplay(71), "RIGHT");
    plugin->setParameter(30, 1.0f);
    EXPECT_EQ(plugin->parameterDisplay(30), "20000");
    EXPECT_EQ(plugin->parameterDisplay(22), "632");
}
