// Every way a run can fail: a one-line message, a non-zero exit, and the folder as it was (no
// new or temporary file, an earlier output of the same name and the input untouched).

#include <gtest/gtest.h>

#include <map>

#include "RenderTestSupport.h"

namespace rendertest {
namespace {

struct Failure {
    const char* name;
    std::vector<std::string> args;
    const char* message;  // part of what standard error must say
};

void PrintTo(const Failure& v, std::ostream* os) { *os << v.name; }

class Failures : public RenderTest, public ::testing::WithParamInterface<Failure> {};

TEST_P(Failures, ExitNonZeroWithMessageAndLeaveTheFolderAsItWas) {
    const Failure& f = GetParam();
    writeShorts(path("in.wav"), kWav16, 44100, 2, testShorts(3000, 2));
    writeShorts(path("three.wav"), kWav16, 44100, 3, testShorts(3000, 3));
    writeShorts(path("in.au"), SF_FORMAT_AU | SF_FORMAT_PCM_16, 44100, 2, testShorts(3000, 2));
    writeShorts(path("slow.wav"), kWav16, 4000, 1, testShorts(3000, 1));
    std::ofstream(path("notes.wav")) << "not audio at all\n";
    std::ofstream(path("out.wav")) << "an earlier render";
    ImageWriter().u32(0x41424344).u8(kTypePreset).u32(presets::image::kFormatVersion).save(path("foreign.tyx"));
    ImageWriter().header(kTypePreset, 2, 0, kNameRecordBytes + kValueRecordBytes).nameRecord(0, "Loud")
        .valueRecord(0, 5, 1.5f).save(path("loud.tyx"));
    ImageWriter().header(kTypePreset, 3, 0, kNameRecordBytes + 2 * kValueRecordBytes).nameRecord(0, "Cut")
        .valueRecord(0, 5, 0.5f).save(path("cut.tyx"));
    ImageWriter().header(kTypeBank, 1, 0, kNameRecordBytes).nameRecord(0, "Only").save(path("bank.tyb"));

    auto folder = [&] {  // every file by name, with a hash of its contents
        std::map<std::string, size_t> m;
        for (const auto& name : listing()) m[name] = std::hash<std::string>{}(slurp(path(name)));
        return m;
    };
    const auto before = folder();
    const RunResult r = run(f.args);
    EXPECT_NE(r.exitCode, 0);
    EXPECT_NE(r.err.find(f.message), std::string::npos) << r.err;
    EXPECT_EQ(r.err.rfind("vireo-render: ", 0), 0u) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_EQ(folder(), before);
}

const Failure kFailures[] = {
    {"MissingInput", {"gone.wav", "out.wav"}, "No such file"},
    {"NotAudio", {"notes.wav", "out.wav"}, "not an audio file"},
    {"UnsupportedContainer", {"in.au", "out.au"}, "unsupported format"},
    {"ThreeChannels", {"three.wav", "out.wav"}, "3 channels"},
    {"RateOutsideThePlugin", {"slow.wav", "out.wav"}, "4000 Hz"},
    {"OutputIsInput", {"in.wav", "./in.wav"}, "is the input file"},
    {"MissingOutputFolder", {"in.wav", "no/such/folder/out.wav"}, "cannot write in 'no/such/folder'"},
    {"UnknownPreset", {"--preset", "No Such Preset", "in.wav", "out.wav"}, "unknown preset 'No Such Preset'"},
    {"PresetIndexOutOfRange", {"--preset", "99", "in.wav", "out.wav"}, "no preset 99"},
    {"UnknownParameter", {"--set", "FLT9 Gain=0.5", "in.wav", "out.wav"}, "unknown parameter 'FLT9 Gain'"},
    {"ValueAboveOne", {"--set", "Output=1.5", "in.wav", "out.wav"}, "outside 0..1"},
    {"ValueBelowZero", {"--set", "Output=-0.1", "in.wav", "out.wav"}, "outside 0..1"},
    {"ValueNotANumber", {"--set", "Output=loud", "in.wav", "out.wav"}, "not a number"},
    {"MissingPresetFile", {"--preset-file", "none.tyx", "in.wav", "out.wav"}, "cannot open 'none.tyx'"},
    {"ForeignPresetFile", {"--preset-file", "foreign.tyx", "in.wav", "out.wav"}, "foreign magic"},
    {"PresetFileValueOutOfRange", {"--preset-file", "loud.tyx", "in.wav", "out.wav"}, "outside 0..1"},
    {"TruncatedPresetFile", {"--preset-file", "cut.tyx", "in.wav", "out.wav"}, "truncated"},
    {"BankAsPresetFile", {"--preset-file", "bank.tyb", "in.wav", "out.wav"}, "--bank-file"},
    {"MissingPlugin", {"--plugin", "/nonexistent/TyxVireo.so", "in.wav", "out.wav"}, "cannot load"},
    {"ExtensionAgainstContainer", {"in.wav", "out.flac"}, "add --format"},
    {"BadBits", {"--bits", "12", "in.wav", "out.wav"}, "unknown --bits"},
    {"OggHasNoBits", {"--format", "ogg", "--bits", "16", "in.wav", "out.ogg"}, "no --bits"},
    {"UnknownOption", {"--louder", "in.wav", "out.wav"}, "unknown option '--louder'"},
    {"BadBlock", {"--block", "0", "in.wav", "out.wav"}, "--block"},
};

INSTANTIATE_TEST_SUITE_P(Cases, Failures, ::testing::ValuesIn(kFailures),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace rendertest
