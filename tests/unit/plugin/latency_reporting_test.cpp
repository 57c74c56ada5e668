// The latency the plug-in reports: its figures, the record's initial delay and the text the
// settings page shows, as the mode, the rate, the block size and the engine settings change.

#include <gtest/gtest.h>

#include <string>

#include "PluginHarness.h"

using namespace params;

namespace {

float stepValue(int k, int n) { return (static_cast<float>(k) + 0.5f) / static_cast<float>(n); }

std::string latencyText(const Plugin& p) {
    char text[Plugin::kLatencyTextSize] = {};
    p.getLatencyText(text);
    return text;
}

}  // namespace

TEST(LatencyReporting, FirstRunReportsTheConstantDelay) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    int mode = -1;
    p.getLatencyMode(mode);
    EXPECT_EQ(mode, 2);
    EXPECT_EQ(p.getAeffect()->initialDelay, 24638);
    EXPECT_EQ(latencyText(p), "(compensated) 24638 samples (558.68 ms)");
    int reported, path, padding;
    p.getLatencyInfo(reported, path, padding);
    EXPECT_EQ(reported, 24638);
    EXPECT_EQ(path + padding, 24638);
}

TEST(LatencyReporting, ModeNeverReportsThePathButTellsTheHostNothing) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    p.setLatencyMode(0);
    p.setSampleRate(48000.0f);
    p.setBlockSize(512);
    p.setParameter(kLinPhase, stepValue(1, 2));
    p.setParameter(kFat, stepValue(0, 2));
    p.setParameter(kResolution, stepValue(0, 3));
    int reported, path, padding;
    p.getLatencyInfo(reported, path, padding);
    EXPECT_EQ(reported, 2559);
    EXPECT_EQ(path, 2559);
    EXPECT_EQ(padding, 0);
    EXPECT_EQ(p.getAeffect()->initialDelay, 0);
    EXPECT_EQ(latencyText(p), "(not compensated) 2559 samples (53.31 ms)");
}

TEST(LatencyReporting, ModeLinPhaseOff) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    p.setLatencyMode(1);
    p.setParameter(kLinPhase, stepValue(0, 2));
    p.setSampleRate(44100.0f);
    EXPECT_EQ(p.getAeffect()->initialDelay, 63);
    EXPECT_EQ(latencyText(p).rfind("(compensated) 63 samples", 0), 0u) << latencyText(p);
    p.setSampleRate(96000.0f);
    EXPECT_EQ(p.getAeffect()->initialDelay, 0);
}

TEST(LatencyReporting, AModeChangeReachesTheHostAtTheNextRateOrBlockSize) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    p.setLatencyMode(0);
    EXPECT_EQ(latencyText(p).rfind("(not compensated)", 0), 0u) << latencyText(p);
    EXPECT_EQ(p.getAeffect()->initialDelay, 24638);
    p.setBlockSize(256);
    EXPECT_EQ(p.getAeffect()->initialDelay, 0);
    p.setLatencyMode(2);
    EXPECT_EQ(p.getAeffect()->initialDelay, 0);
    p.setSampleRate(44100.0f);  // the same rate: still reported again
    EXPECT_EQ(p.getAeffect()->initialDelay, 24638);
    p.setSampleRate(96000.0f);
    EXPECT_EQ(p.getAeffect()->initialDelay, 49276);
}

TEST(LatencyReporting, BandTypesMakeTheActiveMask) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    p.selectPreset(0);
    EXPECT_EQ(p.activeBandMask(), 0u);  // "Flat": every band switched off
    p.setParameter(kType + 2, stepValue(3, kBandTypeSteps));
    EXPECT_EQ(p.activeBandMask(), (1u << 2) | (1u << 10));  // LINK: both sides
    p.setParameter(kType + 2, stepValue(10, kBandTypeSteps));
    EXPECT_EQ(p.activeBandMask(), 0u);
}
