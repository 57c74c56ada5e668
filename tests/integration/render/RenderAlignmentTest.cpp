// Latency removal, through the equalizer on "Flat" (the preset a fresh settings folder starts
// on: a pure delay) and through DelayFixture.so (a known 777 samples; it aborts on a host call
// out of order): the output is the input again, in its own format, whatever the block size,
// precision or channel count.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

struct Variant {
    int block;
    bool useDouble;
    int channels;
};

void PrintTo(const Variant& v, std::ostream* os) {
    *os << "block " << v.block << (v.useDouble ? ", double" : ", float") << (v.channels == 1 ? ", mono" : ", stereo");
}

class Alignment : public RenderTest, public ::testing::WithParamInterface<Variant> {
protected:
    RunResult render(bool fixture, const std::vector<std::string>& more) {
        std::vector<std::string> args = {"--block", std::to_string(GetParam().block)};
        if (GetParam().useDouble) args.push_back("--double");
        if (fixture) args.insert(args.end(), {"--plugin", TYX_BUILD_DIR "/DelayFixture.so"});
        args.insert(args.end(), more.begin(), more.end());
        return run(args);
    }
};

TEST_P(Alignment, OutputEqualsInputAfterLatencyRemoval) {
    const int channels = GetParam().channels;
    // Shorter and longer than the fixture's delay, and never a whole number of blocks.
    const int longer = GetParam().block == 1 ? 3001 : 20011;
    for (const auto& [fixture, frames, floats] : {std::tuple{true, 100, false}, {true, 5003, false},
                                                  {false, longer, false}, {false, longer, true}}) {
        SCOPED_TRACE((fixture ? "fixture " : "equalizer ") + std::to_string(frames) + (floats ? " floats" : ""));
        const auto input = testShorts(frames, channels, static_cast<uint32_t>(frames));
        const auto floatInput = testFloats(frames, channels);
        if (floats) writeFloats(path("in.wav"), kWavFloat, 48000, channels, floatInput);
        else writeShorts(path("in.wav"), kWav16, 44100, channels, input);
        const RunResult r = render(fixture, {"in.wav", "out.wav"});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        EXPECT_NE(r.out.find(fixture ? "777 samples (17.62 ms), removed" : "removed from the output"),
                  std::string::npos) << r.out;

        const Audio out = readAudio(path("out.wav"));
        EXPECT_EQ(out.info.format, floats ? kWavFloat : kWav16);
        EXPECT_EQ(out.info.channels, channels);
        EXPECT_EQ(out.info.samplerate, floats ? 48000 : 44100);
        ASSERT_EQ(out.info.frames, frames);
        if (!floats) { EXPECT_EQ(out.shorts, input); }
        for (size_t i = 0; floats && i < floatInput.size(); ++i) ASSERT_NEAR(out.floats[i], floatInput[i], 1e-6) << i;
    }
}

TEST_P(Alignment, KeepLatencyWritesTheDelayedOutputWhole) {
    const int channels = GetParam().channels;
    const auto input = testShorts(3000, channels);
    writeShorts(path("in.wav"), kWav16, 44100, channels, input);
    for (bool fixture : {true, false}) {
        const RunResult r = render(fixture, {"--keep-latency", "in.wav", "out.wav"});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        EXPECT_NE(r.out.find(fixture ? "777 samples (17.62 ms), kept in the output" : "kept in the output"),
                  std::string::npos) << r.out;
        const size_t delay = static_cast<size_t>(printedLatency(r.out)) * channels;

        // The reported delay of silence first, then the input, with nothing cut off at the end.
        const Audio out = readAudio(path("out.wav"));
        ASSERT_EQ(out.shorts.size(), delay + input.size());
        EXPECT_EQ(std::vector<short>(out.shorts.begin(), out.shorts.begin() + delay), std::vector<short>(delay, 0));
        EXPECT_EQ(std::vector<short>(out.shorts.begin() + delay, out.shorts.end()), input);
    }
}

INSTANTIATE_TEST_SUITE_P(Variants, Alignment,
                         ::testing::Values(Variant{512, false, 2}, Variant{512, true, 1}, Variant{1, false, 2},
                                           Variant{1, true, 1}, Variant{37, false, 2}, Variant{776, false, 1},
                                           Variant{777, false, 2}, Variant{778, true, 2}, Variant{4096, false, 1}));

}  // namespace
}  // namespace rendertest
