// Without an input file, vireo-render renders its built-in test signal to vireo-demo.wav in
// the current folder and sums the run up.

#include <gtest/gtest.h>

#include <regex>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

class Demo : public RenderTest {};

TEST_F(Demo, WritesVireoDemoWavAndASummary) {
    const RunResult r = run({});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(listing(), std::vector<std::string>{"vireo-demo.wav"});

    const Audio a = readFloats(path("vireo-demo.wav"));
    EXPECT_EQ(a.info.samplerate, 48000);
    EXPECT_EQ(a.info.channels, 2);
    EXPECT_EQ(a.info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    EXPECT_GE(a.info.frames, 2 * 48000);  // a few seconds
    EXPECT_LE(a.info.frames, 10 * 48000);

    std::smatch in, out;
    ASSERT_TRUE(std::regex_search(r.out, in, std::regex("input +peak +(\\S+) dBFS +RMS +(\\S+) dBFS"))) << r.out;
    ASSERT_TRUE(std::regex_search(r.out, out, std::regex("output +peak +(\\S+) dBFS +RMS +(\\S+) dBFS"))) << r.out;
    EXPECT_GE(printedLatency(r.out), 0) << r.out;
    EXPECT_NE(r.out.find("vireo-demo.wav"), std::string::npos);
    // The default preset is "Flat", which lets the signal through unchanged.
    EXPECT_EQ(in[1], out[1]);
    EXPECT_EQ(in[2], out[2]);
}

TEST_F(Demo, TakesSettingsAndStaysQuietWhenAsked) {
    const RunResult r = run({"--quiet", "--set", "Output=0.25", "--block", "300", "--bits", "24"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(r.out.empty()) << r.out;
    EXPECT_TRUE(r.err.empty()) << r.err;
    EXPECT_EQ(readShorts(path("vireo-demo.wav")).info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
}

TEST_F(Demo, HelpDescribesTheCommandLine) {
    const RunResult r = run({"--help"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_NE(r.out.find("usage: vireo-render"), std::string::npos);
    EXPECT_TRUE(listing().empty());
}

}  // namespace
}  // namespace rendertest
