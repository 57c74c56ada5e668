// Every way a run can fail: a one-line message, a non-zero exit, no output file (nor a
// temporary one) left behind, and the input as it was.

#include <gtest/gtest.h>

#include <fstream>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

struct Failure {
    const char* name;
    std::vector<std::string> args;
    const char* message;     // part of what standard error must say
    bool needsChunk = false;  // the case reaches the plug-in's chunk before it fails
};

void PrintTo(const Failure& v, std::ostream* os) { *os << v.name; }

std::string describe(const ::testing::TestParamInfo<Failure>& info) { return info.param.name; }

class Failures : public RenderTest, public ::testing::WithParamInterface<Failure> {
protected:
    void SetUp() override {
        RenderTest::SetUp();
        if (GetParam().needsChunk && !pluginGivesChunk(configDir())) GTEST_SKIP() << "the plug-in gives no chunk yet";
        writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, testShorts(3000, 2));
        writeShorts(path("three.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 3, testShorts(3000, 3));
        writeShorts(path("in.au"), SF_FORMAT_AU | SF_FORMAT_PCM_16, 44100, 2, testShorts(3000, 2));
        writeShorts(path("slow.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4000, 1, testShorts(3000, 1));
        std::ofstream(path("notes.wav")) << "not audio at all\n";

        ImageWriter foreign;
        foreign.u32(0x41424344).u8(0x22).u32(0x02000000);
        foreign.save(path("foreign.tyx"));
        ImageWriter loud;
        loud.header(0x22, 2, 0, kNameRecordBytes + kValueRecordBytes).nameRecord(0, "Loud").valueRecord(0, 5, 1.5f);
        loud.save(path("loud.tyx"));
        ImageWriter cut;
        cut.header(0x22, 3, 0, kNameRecordBytes + 2 * kValueRecordBytes).nameRecord(0, "Cut").valueRecord(0, 5, 0.5f);
        cut.save(path("cut.tyx"));
        ImageWriter bank;
        bank.header(0x38, 1, 0, kNameRecordBytes).nameRecord(0, "Only");
        bank.save(path("bank.tyb"));
    }
};

TEST_P(Failures, ExitNonZeroWithMessageAndLeaveNoOutput) {
    const Failure& f = GetParam();
    const auto inputBefore = fileBytes(path("in.wav"));
    const auto filesBefore = listing();

    const RunResult r = run(f.args);
    EXPECT_NE(r.exitCode, 0);
    EXPECT_NE(r.err.find(f.message), std::string::npos) << r.err;
    EXPECT_EQ(r.err.rfind("vireo-render: ", 0), 0u) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;

    EXPECT_EQ(listing(), filesBefore);  // no output, no temporary file
    EXPECT_EQ(fileBytes(path("in.wav")), inputBefore);
}

const Failure kFailures[] = {
    {"MissingInput", {"gone.wav", "out.wav"}, "No such file"},
    {"NotAudio", {"notes.wav", "out.wav"}, "not an audio file"},
    {"UnsupportedContainer", {"in.au", "out.au"}, "unsupported format"},
    {"ThreeChannels", {"three.wav", "out.wav"}, "3 channels"},
    {"RateOutsideThePlugin", {"slow.wav", "out.wav"}, "4000 Hz"},
    {"OutputIsInput", {"in.wav", "./in.wav"}, "is the input file"},
    {"UnknownPreset", {"--preset", "No Such Preset", "in.wav", "out.wav"}, "unknown preset 'No Such Preset'"},
    {"PresetIndexOutOfRange", {"--preset", "99", "in.wav", "out.wav"}, "no preset 99"},
    {"UnknownParameter", {"--set", "FLT9 Gain=0.5", "in.wav", "out.wav"}, "unknown parameter 'FLT9 Gain'"},
    {"ValueAboveOne", {"--set", "Output=1.5", "in.wav", "out.wav"}, "outside 0..1"},
    {"ValueBelowZero", {"--set", "Output=-0.1", "in.wav", "out.wav"}, "outside 0..1"},
    {"ValueNotANumber", {"--set", "Output=loud", "in.wav", "out.wav"}, "not a number"},
    {"MissingPresetFile", {"--preset-file", "none.tyx", "in.wav", "out.wav"}, "cannot open 'none.tyx'"},
    {"ForeignPresetFile", {"--preset-file", "foreign.tyx", "in.wav", "out.wav"}, "foreign magic", true},
    {"PresetFileValueOutOfRange", {"--preset-file", "loud.tyx", "in.wav", "out.wav"}, "outside 0..1", true},
    {"TruncatedPresetFile", {"--preset-file", "cut.tyx", "in.wav", "out.wav"}, "truncated", true},
    {"BankAsPresetFile", {"--preset-file", "bank.tyb", "in.wav", "out.wav"}, "--bank-file", true},
    {"MissingPlugin", {"--plugin", "/nonexistent/TyxVireo.so", "in.wav", "out.wav"}, "cannot load"},
    {"ExtensionAgainstContainer", {"in.wav", "out.flac"}, "add --format"},
    {"BadBits", {"--bits", "12", "in.wav", "out.wav"}, "unknown --bits"},
    {"OggHasNoBits", {"--format", "ogg", "--bits", "16", "in.wav", "out.ogg"}, "no --bits"},
    {"UnknownOption", {"--louder", "in.wav", "out.wav"}, "unknown option '--louder'"},
    {"BadBlock", {"--block", "0", "in.wav", "out.wav"}, "--block"},
};

INSTANTIATE_TEST_SUITE_P(Cases, Failures, ::testing::ValuesIn(kFailures), describe);

class FailedRuns : public RenderTest {};

TEST_F(FailedRuns, NeverTouchAnExistingOutput) {
    writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, testShorts(3000, 2));
    std::ofstream(path("out.wav")) << "an earlier render";
    const auto before = fileBytes(path("out.wav"));
    const RunResult r = run({"--set", "Nothing=0.5", "in.wav", "out.wav"});
    EXPECT_NE(r.exitCode, 0);
    EXPECT_EQ(fileBytes(path("out.wav")), before);
    EXPECT_EQ(listing(), (std::vector<std::string>{"in.wav", "out.wav"}));
}

TEST_F(FailedRuns, MissingOutputFolderIsReported) {
    writeShorts(path("in.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, testShorts(3000, 2));
    const RunResult r = run({"in.wav", "no/such/folder/out.wav"});
    EXPECT_NE(r.exitCode, 0);
    EXPECT_NE(r.err.find("cannot write in 'no/such/folder'"), std::string::npos) << r.err;
}

}  // namespace
}  // namespace rendertest
