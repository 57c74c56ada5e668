// What the output file is: the input's container, sample format, rate, channel count and text
// fields unless --format or --bits ask for others; without an input, the demo.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

class Output : public RenderTest {};

TEST_F(Output, KeepsContainerSampleFormatAndChannels) {
    const std::tuple<const char*, int, int> cases[] = {
        {"in16.wav", kWav16, 2},   {"mono16.wav", kWav16, 1}, {"in24.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2},
        {"in16.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1}, {"in8.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 2},
        {"in.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2},
    };
    for (const auto& [name, format, channels] : cases) {
        SCOPED_TRACE(name);
        const auto input = testShorts(6000, channels);
        writeShorts(path(name), format, 32000, channels, input);
        const RunResult r = run({"--quiet", name});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;

        // Without OUTPUT the result goes beside the input, named after it.
        const fs::path in = name;
        const Audio a = readAudio(path(in.stem().string() + "-vireo" + in.extension().string()));
        EXPECT_EQ(a.info.format, format);
        EXPECT_EQ(a.info.channels, channels);
        EXPECT_EQ(a.info.samplerate, 32000);
        if ((format & SF_FORMAT_SUBMASK) == SF_FORMAT_VORBIS) continue;  // lossy: only the layout is kept
        ASSERT_EQ(a.info.frames, 6000);
        // 8-bit keeps only the top byte of each 16-bit test sample.
        const int shift = (format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_U8 ? 8 : 0;
        for (size_t i = 0; i < input.size(); ++i) ASSERT_EQ(a.shorts[i] >> shift, input[i] >> shift) << i;
    }
}

TEST_F(Output, FormatAndBitsOptionsChangeItButTextFieldsTravel) {
    const auto input = testShorts(4000, 2);
    writeShorts(path("in.wav"), kWav16, 44100, 2, input, "Take Five");
    const std::tuple<std::vector<std::string>, const char*, int> cases[] = {
        {{"--bits", "24", "in.wav", "out24.wav"}, "out24.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24},
        {{"--bits", "float", "in.wav", "outf.wav"}, "outf.wav", kWavFloat},
        {{"--format", "flac", "in.wav", "out.flac"}, "out.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
        {{"--format", "aiff", "--bits", "24", "in.wav"}, "in-vireo.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24},
    };
    for (const auto& [args, out, format] : cases) {
        ASSERT_EQ(run(args).exitCode, 0) << out;
        EXPECT_EQ(readAudio(path(out)).info.format, format) << out;
    }
    EXPECT_EQ(readAudio(path("out24.wav")).title, "Take Five");
    EXPECT_EQ(readAudio(path("out.flac")).shorts, input);
}

TEST_F(Output, DemoWritesVireoDemoWavAndASummary) {
    const RunResult help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("usage: vireo-render"), std::string::npos);
    EXPECT_TRUE(listing().empty()) << "--help renders nothing";
    // A fresh settings folder starts on "Flat", which lets the signal through unchanged.
    EXPECT_EQ(run({"--list-presets"}).out.rfind("*  0  Flat\n", 0), 0u);

    const RunResult r = run({});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(listing(), std::vector<std::string>{"vireo-demo.wav"});
    const Audio a = readAudio(path("vireo-demo.wav"));
    EXPECT_EQ((std::vector{a.info.samplerate, a.info.channels, a.info.format}), (std::vector{48000, 2, kWavFloat}));
    EXPECT_TRUE(a.info.frames >= 2 * 48000 && a.info.frames <= 10 * 48000) << a.info.frames;  // a few seconds
    std::smatch in, out;
    ASSERT_TRUE(std::regex_search(r.out, in, std::regex("input +peak +(\\S+) dBFS +RMS +(\\S+) dBFS"))) << r.out;
    ASSERT_TRUE(std::regex_search(r.out, out, std::regex("output +peak +(\\S+) dBFS +RMS +(\\S+) dBFS"))) << r.out;
    EXPECT_GE(printedLatency(r.out), 0) << r.out;
    EXPECT_NE(r.out.find("vireo-demo.wav"), std::string::npos);
    EXPECT_EQ(in[1], out[1]);
    EXPECT_EQ(in[2], out[2]);

    // Settings apply to the demo too, and --quiet silences the summary.
    const RunResult quiet = run({"--quiet", "--set", "Output=0.25", "--block", "300", "--bits", "24"});
    ASSERT_EQ(quiet.exitCode, 0) << quiet.err;
    EXPECT_EQ(quiet.out + quiet.err, "");
    EXPECT_EQ(readAudio(path("vireo-demo.wav")).info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
}

}  // namespace
}  // namespace rendertest
