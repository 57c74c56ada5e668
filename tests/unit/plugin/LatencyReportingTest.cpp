// The latency the plug-in reports: the constant of mode 2 against every path it stands for, the
// record's initial delay and the settings page's text as the mode, rate and block size change.
// (That the audio really is that late is checked through the built library.)

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "PluginHarness.h"
#include "plugin/Latency.h"

using namespace params;

namespace {

std::string latencyText(const Plugin& p) {
    char text[Plugin::kLatencyTextSize] = {};
    p.getLatencyText(text);
    return text;
}

}  // namespace

TEST(LatencyFigures, ConstantModeCoversEveryPathOfTheRateClass) {
    for (int rate : {44100, 48000, 88200, 96000, 176400, 192000}) {
        const int k = latency::constantDelay(rate);
        int largest = 0;
        for (bool fat : {false, true})
            for (bool lin : {false, true})
                for (int res = 0; res < 3; ++res) {
                    // The longest partition is twice the frame: the worst case over block sizes.
                    const int n = 4096 << (res + (fat ? 1 : 0));
                    const latency::EngineSettings s{rate, n, 2 * n, fat, lin, true};
                    largest = std::max(largest, latency::pathLatency(s));
                    const auto f = latency::figures(latency::kAlways, s);
                    EXPECT_EQ(f.reported, k);
                    EXPECT_EQ(f.padding, std::max(0, k - f.pathLatency));
                }
        // The path of the largest settings reaches the constant; only the decimated path at high
        // rates with a 65536-sample host block exceeds it, by one sample.
        EXPECT_EQ(largest, rate < 100000 ? k : k + 1) << rate;
    }
}

TEST(LatencyReporting, EachModeReportsItsDelayAndText) {
    PluginHarness h;
    Plugin& p = *h.plugin;
    int mode = -1;
    p.getLatencyMode(mode);
    EXPECT_EQ(mode, 2);  // a first run compensates the constant delay
    EXPECT_EQ(p.getAeffect()->initialDelay, 24638);
    EXPECT_EQ(latencyText(p), "(compensated) 24638 samples (558.68 ms)");

    // Mode 0 reports the path's own delay but tells the host nothing.
    p.setLatencyMode(0);
    p.setSampleRate(48000.0f);
    p.setBlockSize(512);
    p.setParameter(kLinPhase, stepCentre(1, 2));
    p.setParameter(kFat, stepCentre(0, 2));
    p.setParameter(kResolution, stepCentre(0, 3));
    int reported, path, padding;
    p.getLatencyInfo(reported, path, padding);
    EXPECT_EQ(reported, 2559);
    EXPECT_EQ(path, 2559);
    EXPECT_EQ(padding, 0);
    EXPECT_EQ(p.getAeffect()->initialDelay, 0);
    EXPECT_EQ(latencyText(p), "(not compensated) 2559 samples (53.31 ms)");

    // Mode 1 compensates only the minimum-phase path's delay, which 96 kHz does not have.
    p.setLatencyMode(1);
    p.setParameter(kLinPhase, stepCentre(0, 2));
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
