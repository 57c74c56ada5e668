// What the plug-in's audio reaches besides the host's outputs: the analyzer (only while an editor
// window shows it) and, while the user holds a band, the audition band-pass in place of the
// equalizer.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "PluginHarness.h"
#include "gui/Editor.h"
#include "plugin/ParameterTable.h"

namespace {

constexpr double kRate = 48000.0;
constexpr int kBlock = 512;
constexpr int kOneKilohertzBar = 13;  // bars run from the highest band down

// An editor whose window the host has opened.
struct OpenWindow : AEffEditor {
    bool isOpen() override { return true; }
};

// Band b's frequency parameter value for f Hz (20 Hz · 1000^v).
float frequencyValue(double f) { return static_cast<float>(std::log10(f / 20.0) / 3.0); }

class AuditionAndFeed : public PluginTest {
protected:
    OpenWindow window;

    void SetUp() override {
        p.setSampleRate(static_cast<float>(kRate));
        p.setBlockSize(kBlock);
        p.resume();
    }
    void TearDown() override { p.setEditor(p.getPluginEditor()); }

    void spanOn(bool on) { p.setParameter(params::kSpan, params::stepCentre(on ? 1 : 0, 2)); }

    float run(double f, double seconds, float a = 0.5f) { return peakOfSine(p, f, seconds, a); }

    std::vector<float> bars() {
        std::vector<float> b(31, 0.0f);
        p.getAnalyzerBars(b.data());
        return b;
    }
};

}  // namespace

TEST_F(AuditionAndFeed, TheAnalyzerHearsTheOutputOnlyWhileAWindowShowsIt) {
    spanOn(true);
    run(1000.0, 0.5);
    const float floor = bars()[kOneKilohertzBar];
    EXPECT_LT(floor, -90.0f) << "the built-in editor has no window yet, so nothing is fed";

    p.setEditor(&window);
    run(1000.0, 1.0, 1.0f);
    const std::vector<float> b = bars();
    EXPECT_EQ(std::max_element(b.begin(), b.end()) - b.begin(), kOneKilohertzBar);
    EXPECT_GT(b[kOneKilohertzBar], -4.0f);
}

// The audition section is the constant-peak band-pass at the band's frequency w0, gain 2^(4·level),
// with its zero at Nyquist taken out: at w0 its gain is 2^(4·level) / |1 + e^(−j·w0)|.
double auditionGain(double f, double level) {
    return std::pow(2.0, 4.0 * level) / (2.0 * std::cos(std::numbers::pi * f / kRate));
}

TEST_F(AuditionAndFeed, AnAuditionedBandIsHeardThroughItsBandPass) {
    const int b = 2;
    p.setParameter(params::bandIndex(1, 0, b), frequencyValue(1000.0));
    const float plain = run(1000.0, 1.5);  // past the reported latency
    EXPECT_NEAR(plain, 0.5f, 1e-3f);

    p.setAuditionBand(b);
    EXPECT_NEAR(run(1000.0, 0.5), 0.5 * auditionGain(1000.0, 0.5), 0.005);
    EXPECT_LT(run(100.0, 0.5), 0.2f) << "a decade away from the band, little passes";

    p.setAuditionLevel(0.0f);
    EXPECT_NEAR(run(1000.0, 0.5), 0.5 * auditionGain(1000.0, 0.0), 0.005);

    // Moving the held band moves the band-pass with it.
    p.setBandFrequency(b, frequencyValue(250.0));
    EXPECT_NEAR(run(250.0, 0.5), 0.5 * auditionGain(250.0, 0.0), 0.005);
    EXPECT_LT(run(1000.0, 0.5), 0.1f);

    p.setAuditionBand(b);
    p.setAuditionBand(9);  // a band that does not exist ends the audition
    EXPECT_NEAR(run(1000.0, 1.0), plain, 1e-3f) << "the equalizer's output is back";
}

TEST_F(AuditionAndFeed, DuringAnAuditionTheAnalyzerHearsTheAuditionedSignal) {
    spanOn(true);
    p.setEditor(&window);
    p.setParameter(params::bandIndex(1, 0, 0), frequencyValue(100.0));
    p.setAuditionBand(0);
    p.setAuditionWidth(1.0f);  // the narrowest band-pass
    run(1000.0, 1.0, 1.0f);
    EXPECT_LT(bars()[kOneKilohertzBar], -20.0f) << "1 kHz is far outside the 100 Hz band-pass";
}
