// The latency the plug-in reports: the constant of mode 2 against every path it stands for, the
// record's initial delay and the settings page's text as the mode, rate and block size change.
// (That the audio really is that late is checked through the built library; here only across
// mode changes, which the host cannot make.)

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "PluginHarness.h"
#include "plugin/Latency.h"

using namespace params;

TEST(LatencyFigures, ConstantModeCoversEveryPathOfTheRateClass) {
    for (int rate : {44100, 48000, 88200, 96000, 176400, 192000}) {
        const int k = latency::constantDelay(rate);
        int largest = 0;
        for (bool fat : {false, true})
            for (bool lin : {false, true})
                for (int res = 0; res < 3; ++res) {
                    // The longest partition is twice the frame: the worst case over block sizes.
                    const int n = 4096 << (res + (fat ? 1 : 0));
                    largest = std::max(largest, latency::pathLatency({rate, n, 2 * n, fat, lin, true}));
                }
        // The path of the largest settings reaches the constant; only the decimated path at high
        // rates with a 65536-sample host block exceeds it, by one sample.
        EXPECT_EQ(largest, rate < 100000 ? k : k + 1) << rate;
    }
}

using LatencyReporting = PluginTest;

// A mode change shows in the text at once but reaches the record only at the next sample-rate or
// block-size call (the same rate again counts).
TEST_F(LatencyReporting, ModeRateAndBlockSizeGiveTheRecordDelayAndText) {
    struct Step {
        int mode;     // -1: keep
        float rate;   // 0: no call
        int block;    // 0: no call
        int linPhase; // -1: keep
        int record;
        const char* text;
    } steps[] = {
        {-1, 0, 0, -1, 24638, "(compensated) 24638 samples (558.68 ms)"},  // a first run compensates
        {0, 0, 0, -1, 24638, "(not compensated)"},
        {-1, 0, 256, -1, 0, "(not compensated)"},
        {-1, 48000, 512, 1, 0, "(not compensated) 2559 samples (53.31 ms)"},  // P/2 + N/2 − 1
        {2, 0, 0, -1, 0, "(compensated) 24638"},
        {-1, 44100, 0, -1, 24638, "(compensated) 24638"},
        {-1, 96000, 0, -1, 49276, "(compensated) 49276"},
        // Mode 1 compensates only the minimum-phase path's delay, which 96 kHz does not have.
        {1, 44100, 0, 0, 63, "(compensated) 63 samples"},
        {-1, 96000, 0, -1, 0, "(compensated) 0 samples"},
    };
    for (const Step& s : steps) {
        if (s.mode >= 0) p.setLatencyMode(s.mode);
        if (s.linPhase >= 0) p.setParameter(kLinPhase, stepCentre(s.linPhase, 2));
        if (s.rate > 0) p.setSampleRate(s.rate);
        if (s.block > 0) p.setBlockSize(s.block);
        char text[Plugin::kLatencyTextSize] = {};
        p.getLatencyText(text);
        EXPECT_EQ(p.getAeffect()->initialDelay, s.record) << s.text;
        EXPECT_EQ(std::string(text).rfind(s.text, 0), 0u) << text;
    }
    int reported, path, padding;
    p.setLatencyMode(0);
    p.setParameter(kLinPhase, stepCentre(1, 2));
    p.setSampleRate(48000.0f);
    p.getLatencyInfo(reported, path, padding);
    EXPECT_EQ((std::vector<int>{reported, path, padding}), (std::vector<int>{2559, 2559, 0}));
}

// Mode 2 pads the linear path to the constant delay, and the convolution spends part of that
// padding on a longer hop; modes 0 and 1 have no padding, so the hop goes back. Changed while
// audio runs, the mode still gives an impulse at the delay the figures report.
TEST_F(LatencyReporting, AnImpulseLeavesAtTheReportedDelayAfterModeChangesMidStream) {
    constexpr int kBlock = 64;
    p.setSampleRate(48000.0f);
    p.setBlockSize(kBlock);
    p.resume();
    std::vector<double> inL(kBlock), inR(kBlock), outL(kBlock), outR(kBlock);
    double* inputs[2] = {inL.data(), inR.data()};
    double* outputs[2] = {outL.data(), outR.data()};
    for (int mode : {2, 0, 2}) {
        SCOPED_TRACE("mode " + std::to_string(mode));
        p.setLatencyMode(mode);
        EXPECT_EQ(p.convolutionHop() > p.partitionLength() / 2, mode == 2);
        int reported, path, padding;
        p.getLatencyInfo(reported, path, padding);
        // Silence through the whole delay first, then the impulse at the start of a block.
        const int blocks = 2 * (reported / kBlock + 2);
        long at = -1, impulseAt = static_cast<long>(blocks / 2) * kBlock;
        double peak = 0.0;
        for (int b = 0; b < blocks; ++b) {
            std::fill(inL.begin(), inL.end(), 0.0);
            std::fill(inR.begin(), inR.end(), 0.0);
            if (b == blocks / 2) inL[0] = inR[0] = 1.0;
            p.processDoubleReplacing(inputs, outputs, kBlock);
            for (int i = 0; i < kBlock; ++i)
                if (std::fabs(outL[i]) > peak && b >= blocks / 2) peak = std::fabs(outL[i]), at = static_cast<long>(b) * kBlock + i;
        }
        EXPECT_EQ(at - impulseAt, reported);
        EXPECT_NEAR(peak, 1.0, 1e-9);
    }
}
