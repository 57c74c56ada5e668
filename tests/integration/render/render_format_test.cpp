// The output keeps the input's container, sample format, rate and channel count, unless
// --format or --bits ask for others.

#include <gtest/gtest.h>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

class OutputFormat : public RenderTest {};

struct Kept {
    const char* name;
    int format;
    int channels;
};

TEST_F(OutputFormat, KeepsContainerSampleFormatAndChannels) {
    const Kept cases[] = {
        {"in16.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2},   {"mono16.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1},
        {"in24.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 2}, {"in16.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1},
        {"in8.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 2},    {"in.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2},
    };
    for (const Kept& c : cases) {
        SCOPED_TRACE(c.name);
        const auto input = testShorts(6000, c.channels);
        writeShorts(path(c.name), c.format, 32000, c.channels, input);
        const RunResult r = run({"--quiet", c.name});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;

        // Without OUTPUT the result goes beside the input, named after it.
        const std::string name = c.name;
        const std::string out = name.substr(0, name.rfind('.')) + "-vireo" + name.substr(name.rfind('.'));
        const Audio a = readShorts(path(out));
        EXPECT_EQ(a.info.format, c.format);
        EXPECT_EQ(a.info.channels, c.channels);
        EXPECT_EQ(a.info.samplerate, 32000);
        if ((c.format & SF_FORMAT_SUBMASK) == SF_FORMAT_VORBIS) continue;  // lossy: only the layout is kept
        ASSERT_EQ(a.info.frames, 6000);
        // 8-bit keeps only the top byte of each 16-bit test sample.
        const int shift = (c.format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_U8 ? 8 : 0;
        for (size_t i = 0; i < input.size(); ++i) ASSERT_EQ(a.shorts[i] >> shift, input[i] >> shift) << i;
    }
}

TEST_F(OutputFormat, FormatAndBitsOptionsChangeIt) {
    const auto input = testShorts(4000, 2);
    writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, input);

    ASSERT_EQ(run({"--bits", "24", "in.wav", "out24.wav"}).exitCode, 0);
    EXPECT_EQ(readShorts(path("out24.wav")).info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);

    ASSERT_EQ(run({"--bits", "float", "in.wav", "outf.wav"}).exitCode, 0);
    EXPECT_EQ(readShorts(path("outf.wav")).info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);

    ASSERT_EQ(run({"--format", "flac", "in.wav", "out.flac"}).exitCode, 0);
    const Audio flac = readShorts(path("out.flac"));
    EXPECT_EQ(flac.info.format, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    EXPECT_EQ(flac.shorts, input);

    ASSERT_EQ(run({"--format", "aiff", "--bits", "24", "in.wav"}).exitCode, 0);
    EXPECT_EQ(readShorts(path("in-vireo.aiff")).info.format, SF_FORMAT_AIFF | SF_FORMAT_PCM_24);
}

TEST_F(OutputFormat, TextFieldsTravelWithTheAudio) {
    SF_INFO info{};
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    info.samplerate = 44100;
    info.channels = 1;
    SNDFILE* f = sf_open(path("in.wav").c_str(), SFM_WRITE, &info);
    ASSERT_NE(f, nullptr);
    sf_set_string(f, SF_STR_TITLE, "Take Five");
    const auto samples = testShorts(1000, 1);
    sf_writef_short(f, samples.data(), 1000);
    sf_close(f);

    ASSERT_EQ(run({"in.wav", "out.wav"}).exitCode, 0);
    SF_INFO outInfo{};
    SNDFILE* out = sf_open(path("out.wav").c_str(), SFM_READ, &outInfo);
    ASSERT_NE(out, nullptr);
    const char* title = sf_get_string(out, SF_STR_TITLE);
    EXPECT_STREQ(title ? title : "", "Take Five");
    sf_close(out);
}

}  // namespace
}  // namespace rendertest
