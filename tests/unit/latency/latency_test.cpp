#include <gtest/gtest.h>

#include "plugin/Latency.h"

using latency::EngineSettings;

namespace {

// Frame and partition as the plug-in derives them for a 512-sample host block.
EngineSettings settings(int rate, bool fat, bool linPhase, int resolution = 0, bool power = true) {
    const int n = 4096 << (resolution + (fat ? 1 : 0));
    int p = rate <= 50000 ? 1024 : rate <= 100000 ? 512 : 256;
    if (fat) p *= 2;
    return {rate, n, p, fat, linPhase, power};
}

std::string text(int mode, const EngineSettings& s) {
    char buffer[64];
    latency::describe(mode, s, buffer, sizeof buffer);
    return buffer;
}

}  // namespace

TEST(Latency, ConstantModeReportsTheLargestDelayOfTheRateClass) {
    for (int rate : {44100, 48000, 88200, 96000, 176400, 192000}) {
        const int k = latency::constantDelay(rate);
        int largest = 0;
        for (bool fat : {false, true})
            for (bool lin : {false, true})
                for (int res = 0; res < 3; ++res) {
                    // The longest partition is twice the frame: the worst case over block sizes.
                    EngineSettings s = settings(rate, fat, lin, res);
                    s.partition = 2 * s.frameSize;
                    largest = std::max(largest, latency::pathLatency(s));
                    const auto f = latency::figures(2, s);
                    EXPECT_EQ(f.reported, k);
                    EXPECT_EQ(f.padding, std::max(0, k - f.pathLatency));
                    EXPECT_GE(f.padding, 0);
                }
        // The path of the largest settings reaches the constant; only the decimated path at high
        // rates with a 65536-sample host block exceeds it, by one sample.
        EXPECT_EQ(largest, rate < 100000 ? k : k + 1) << rate;
    }
    EXPECT_EQ(text(2, settings(44100, false, true)), "(compensated) 24638 samples (558.68 ms)");
}

TEST(Latency, PathDelaysOfTheDesign) {
    EXPECT_EQ(latency::pathLatency(settings(48000, false, true)), 512 + 2048 - 1);
    EXPECT_EQ(text(0, settings(48000, false, true)), "(not compensated) 2559 samples (53.31 ms)");
    EXPECT_EQ(latency::initialDelay(0, settings(48000, false, true)), 0);
    EXPECT_EQ(latency::pathLatency(settings(44100, true, true)), (1024 + 4096) / 2 + 62);
    EXPECT_EQ(latency::pathLatency(settings(44100, true, false)), 63);
    EXPECT_EQ(latency::pathLatency(settings(44100, false, false)), 0);
    EXPECT_EQ(latency::pathLatency(settings(96000, false, true)), 2 * (256 + 2048 - 1) + 126);
    EXPECT_EQ(latency::pathLatency(settings(192000, true, true)), 2 * (256 + 4096) + 124);
    EXPECT_EQ(latency::pathLatency(settings(192000, true, true, 0, false)), 0);
}

TEST(Latency, LinPhaseOffMode) {
    const auto f = latency::figures(1, settings(44100, false, false));
    EXPECT_EQ(f.reported, 63);
    EXPECT_EQ(f.padding, 63);
    EXPECT_EQ(latency::figures(1, settings(44100, true, false)).padding, 0);
    EXPECT_EQ(latency::figures(1, settings(44100, true, false, 0, false)).padding, 63);
    EXPECT_EQ(latency::initialDelay(1, settings(44100, false, false)), 63);
    EXPECT_EQ(latency::initialDelay(1, settings(96000, false, false)), 0);
    EXPECT_EQ(text(1, settings(44100, false, false)).substr(0, 13), "(compensated)");
    EXPECT_EQ(text(1, settings(44100, false, true)).substr(0, 17), "(not compensated)");
}
