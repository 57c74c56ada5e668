// A factory preset rendered by the tool changes the spectrum exactly as the plug-in's own
// response curves say: the rendered impulse response, measured with a direct DFT, against the
// curves of the same preset in a plug-in instance made here.

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdlib>
#include <numbers>
#include <string>
#include <vector>

#include "RenderTestSupport.h"
#include "dsp/EqTypes.h"
#include "plugin/Plugin.h"
#include "presets/Parameters.h"

namespace rendertest {
namespace {

constexpr int kLength = 65536;
constexpr int kImpulseAt = kLength / 2;  // linear phase rings before the impulse as well
constexpr int kCarAudio = 7;             // five active bands

// A path: the file's rate and the switches set over the preset (FAT, LinPhase; −1 leaves it).
struct Setting {
    const char* name;
    int rate;
    float fat, linPhase;
};

// |Σ y[n]·e^(−jωn)| in dB: the response of the rendered impulse at f, with no transform code
// shared with the plug-in.
double responseDb(const std::vector<float>& y, double f, int rate) {
    const double w = 2.0 * std::numbers::pi * f / rate;
    std::complex<double> sum = 0.0;
    for (size_t n = 0; n < y.size(); ++n)
        if (y[n] != 0.0f) sum += static_cast<double>(y[n]) * std::polar(1.0, -w * static_cast<double>(n));
    return 20.0 * std::log10(std::abs(sum));
}

static VstIntPtr quietHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

class Spectrum : public RenderTest, public ::testing::WithParamInterface<Setting> {};

TEST_P(Spectrum, RenderedPresetFollowsThePluginsOwnCurve) {
    const Setting& s = GetParam();
    std::vector<float> impulse(kLength, 0.0f);
    impulse[kImpulseAt] = 1.0f;
    writeFloats(path("impulse.wav"), SF_FORMAT_WAV | SF_FORMAT_FLOAT, s.rate, 1, impulse);
    std::vector<std::string> args = {"--quiet", "--preset", std::to_string(kCarAudio)};
    if (s.fat >= 0) args.insert(args.end(), {"--set", "FAT=" + std::to_string(s.fat)});
    if (s.linPhase >= 0) args.insert(args.end(), {"--set", "LinPhase=" + std::to_string(s.linPhase)});
    args.insert(args.end(), {"impulse.wav", "response.wav"});
    const RunResult r = run(args);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const std::vector<float> response = readAudio(path("response.wav")).floats;
    ASSERT_EQ(response.size(), impulse.size());

    setenv("TYX_VIREO_CONFIG_DIR", configDir().c_str(), 1);
    Plugin plugin(&quietHost);
    plugin.setSampleRate(static_cast<float>(s.rate));
    plugin.setBlockSize(512);
    plugin.selectPreset(kCarAudio);
    if (s.fat >= 0) plugin.setParameter(params::kFat, s.fat);
    if (s.linPhase >= 0) plugin.setParameter(params::kLinPhase, s.linPhase);
    const dsp::Curve& curve = plugin.getTotalCurves(0);

    double largest = 0.0, worst = 0.0;
    for (int i = 20; i < dsp::kPlotPoints; i += 4) {
        const double f = dsp::plotFrequency(i);
        if (f > 12000.0) break;
        const double expected = curve[i];
        largest = std::max(largest, std::fabs(expected));
        worst = std::max(worst, std::fabs(responseDb(response, f, s.rate) - expected));
    }
    EXPECT_GT(largest, 6.0) << "the preset should change the spectrum by several dB";
    EXPECT_LT(worst, 0.1) << s.name;
}

INSTANTIATE_TEST_SUITE_P(Paths, Spectrum,
                         ::testing::Values(Setting{"LinearPhase", 48000, -1, -1}, Setting{"MinimumPhase", 48000, -1, 0.25f},
                                           Setting{"LinearPhaseAtTwiceTheRate", 48000, 0.75f, -1},
                                           Setting{"MinimumPhaseAtTwiceTheRate", 48000, 0.75f, 0.25f},
                                           Setting{"LinearPhaseAtHalfTheRate", 96000, -1, -1},
                                           Setting{"LinearPhaseAtAQuarterOfTheRate", 192000, -1, -1}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace rendertest
