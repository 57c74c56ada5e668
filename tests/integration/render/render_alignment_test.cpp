// With every band switched off ("Flat") the equalizer is a pure delay. Once vireo-render has
// taken the reported latency out, its output must be the input again, sample for sample,
// whatever the precision, block size or channel count. These hold with a zero latency too.
//
// Each run has a private settings folder, so the plug-in starts on its factory preset 0,
// "Flat"; these tests rely on that rather than on selecting it, which goes through the chunk.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

constexpr int kRate = 44100;
constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

struct Variant {
    int block;
    bool useDouble;
    int channels;
};

void PrintTo(const Variant& v, std::ostream* os) {
    *os << "block " << v.block << (v.useDouble ? ", double" : ", float") << (v.channels == 1 ? ", mono" : ", stereo");
}

std::string describe(const ::testing::TestParamInfo<Variant>& info) {
    return "block" + std::to_string(info.param.block) + (info.param.useDouble ? "_double" : "_float") +
           (info.param.channels == 1 ? "_mono" : "_stereo");
}

class FlatIsTransparent : public RenderTest, public ::testing::WithParamInterface<Variant> {};

TEST_P(FlatIsTransparent, OutputEqualsInputAfterLatencyRemoval) {
    const Variant v = GetParam();
    // Not a multiple of any block size used, so the last block is a short one.
    const int frames = v.block == 1 ? 3001 : 20011;
    const auto input = testShorts(frames, v.channels);
    writeShorts(path("in.wav"), kWav16, kRate, v.channels, input);

    std::vector<std::string> args = {"--block", std::to_string(v.block), "in.wav", "out.wav"};
    if (v.useDouble) args.insert(args.begin(), "--double");
    const RunResult r = run(args);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_GE(printedLatency(r.out), 0) << r.out;

    const Audio out = readShorts(path("out.wav"));
    EXPECT_EQ(out.info.format, kWav16);
    EXPECT_EQ(out.info.channels, v.channels);
    EXPECT_EQ(out.info.samplerate, kRate);
    ASSERT_EQ(out.info.frames, frames);
    ASSERT_EQ(out.shorts.size(), input.size());
    for (size_t i = 0; i < input.size(); ++i)
        ASSERT_EQ(out.shorts[i], input[i]) << "sample " << i / v.channels << ", channel " << i % v.channels;
}

INSTANTIATE_TEST_SUITE_P(Variants, FlatIsTransparent,
                         ::testing::Values(Variant{512, false, 2}, Variant{512, true, 2}, Variant{1, false, 2},
                                           Variant{1, true, 1}, Variant{37, false, 2}, Variant{997, true, 2},
                                           Variant{4096, false, 1}, Variant{512, false, 1}),
                         describe);

class Alignment : public RenderTest {};

TEST_F(Alignment, FreshInstanceStartsOnFlat) {
    const RunResult r = run({"--list-presets"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out.rfind("*  0  Flat\n", 0), 0u) << r.out;
}

TEST_F(Alignment, FloatFilesComeBackWithinFloatRounding) {
    const auto input = testFloats(12345, 2);
    writeFloats(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 2, input);
    for (bool useDouble : {false, true}) {
        std::vector<std::string> args = {"in.wav", "out.wav"};
        if (useDouble) args.insert(args.begin(), "--double");
        const RunResult r = run(args);
        ASSERT_EQ(r.exitCode, 0) << r.err;
        const Audio out = readFloats(path("out.wav"));
        EXPECT_EQ(out.info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        ASSERT_EQ(out.floats.size(), input.size());
        for (size_t i = 0; i < input.size(); ++i)
            ASSERT_NEAR(out.floats[i], input[i], 1e-6) << (useDouble ? "double" : "float") << ", sample " << i;
    }
}

TEST_F(Alignment, KeepLatencyWritesTheDelayedOutputWhole) {
    const int frames = 8000;
    const auto input = testShorts(frames, 2);
    writeShorts(path("in.wav"), kWav16, kRate, 2, input);
    const RunResult r = run({"--keep-latency", "in.wav", "out.wav"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const int latency = printedLatency(r.out);
    ASSERT_GE(latency, 0) << r.out;
    EXPECT_NE(r.out.find("kept in the output"), std::string::npos) << r.out;

    // The reported delay of silence first, then the input, with nothing cut off at the end.
    const Audio out = readShorts(path("out.wav"));
    ASSERT_EQ(out.info.frames, frames + latency);
    for (size_t i = 0; i < static_cast<size_t>(latency) * 2; ++i) ASSERT_EQ(out.shorts[i], 0) << i;
    for (size_t i = 0; i < input.size(); ++i) ASSERT_EQ(out.shorts[latency * 2 + i], input[i]) << i;
}

TEST_F(Alignment, SummaryReportsLatencyInSamplesAndMilliseconds) {
    writeShorts(path("in.wav"), kWav16, kRate, 2, testShorts(1000, 2));
    const RunResult r = run({"in.wav", "out.wav"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const int latency = printedLatency(r.out);
    ASSERT_GE(latency, 0) << r.out;
    char expected[64];
    std::snprintf(expected, sizeof expected, "%d samples (%.2f ms)", latency, latency * 1000.0 / kRate);
    EXPECT_NE(r.out.find(expected), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("removed from the output"), std::string::npos) << r.out;
}

}  // namespace
}  // namespace rendertest
