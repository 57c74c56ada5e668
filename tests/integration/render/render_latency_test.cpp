// Latency removal against a plug-in whose delay is known: the stand-in DelayFixture.so delays
// by 777 samples and reports it. Whatever the block size, precision or channel count, the
// output must line up with the input exactly, with nothing lost at the end, and the stand-in
// aborts the run if the host calls it out of order.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

constexpr int kFixtureDelay = 777;
const std::string kFixture = TYX_BUILD_DIR "/DelayFixture.so";

struct Case {
    int block;
    bool useDouble;
    int channels;
};

void PrintTo(const Case& v, std::ostream* os) {
    *os << "block " << v.block << (v.useDouble ? ", double" : ", float") << (v.channels == 1 ? ", mono" : ", stereo");
}

std::string describe(const ::testing::TestParamInfo<Case>& info) {
    return "block" + std::to_string(info.param.block) + (info.param.useDouble ? "_double" : "_float") +
           (info.param.channels == 1 ? "_mono" : "_stereo");
}

class DelayedPlugin : public RenderTest, public ::testing::WithParamInterface<Case> {};

TEST_P(DelayedPlugin, OutputIsAlignedAndComplete) {
    const Case c = GetParam();
    // Shorter and longer than the delay, and never a whole number of blocks.
    for (int frames : {100, 5003}) {
        SCOPED_TRACE(frames);
        const auto input = testShorts(frames, c.channels, static_cast<uint32_t>(frames));
        writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, c.channels, input);
        std::vector<std::string> args = {"--plugin", kFixture, "--block", std::to_string(c.block), "in.wav", "out.wav"};
        if (c.useDouble) args.insert(args.begin(), "--double");
        const RunResult r = run(args);
        ASSERT_EQ(r.exitCode, 0) << r.err;
        EXPECT_EQ(printedLatency(r.out), kFixtureDelay) << r.out;

        const Audio out = readShorts(path("out.wav"));
        ASSERT_EQ(out.info.channels, c.channels);
        ASSERT_EQ(out.info.frames, frames);
        EXPECT_EQ(out.shorts, input);
    }
}

INSTANTIATE_TEST_SUITE_P(Blocks, DelayedPlugin,
                         ::testing::Values(Case{512, false, 2}, Case{1, false, 2}, Case{1, true, 1},
                                           Case{100, true, 2}, Case{776, false, 1}, Case{777, false, 2},
                                           Case{778, true, 2}, Case{4096, false, 2}),
                         describe);

class DelayedPluginKept : public RenderTest {};

TEST_F(DelayedPluginKept, KeepLatencyStartsWithTheDelay) {
    const auto input = testShorts(3000, 2);
    writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, input);
    const RunResult r = run({"--plugin", kFixture, "--keep-latency", "--block", "64", "in.wav", "out.wav"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("777 samples (17.62 ms), kept in the output"), std::string::npos) << r.out;

    const Audio out = readShorts(path("out.wav"));
    ASSERT_EQ(out.info.frames, 3000 + kFixtureDelay);
    const std::vector<short> silence(kFixtureDelay * 2, 0);
    EXPECT_EQ(std::vector<short>(out.shorts.begin(), out.shorts.begin() + kFixtureDelay * 2), silence);
    EXPECT_EQ(std::vector<short>(out.shorts.begin() + kFixtureDelay * 2, out.shorts.end()), input);
}

}  // namespace
}  // namespace rendertest
