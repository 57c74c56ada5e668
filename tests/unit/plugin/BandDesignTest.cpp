// The plug-in drives the band design: parameters reach the curves, Solo and the rate-changing
// switches redesign every band, a preset load refreshes the curves, and the kernels follow.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "PluginHarness.h"

using namespace params;

namespace {

// Index of the plot grid point nearest to f.
int gridPoint(double f) { return static_cast<int>(std::lround(453.0 * std::log(f / 20.0) / std::log(1000.0))); }

float peakOf(const dsp::Curve& c) {
    return std::fabs(*std::max_element(c, c + dsp::kPlotPoints, [](float a, float b) { return std::fabs(a) < std::fabs(b); }));
}

}  // namespace

class BandDesign : public PluginTest {
protected:

    // Band 3 as a peaking band at 1 kHz, +12 dB per section, on both sides (LINK).
    void peakAt1k() {
        p.setParameter(kType + 2, stepCentre(3, kBandTypeSteps));
        p.setParameter(kFreq + 2, static_cast<float>(std::log10(1000.0 / 20.0) / 3.0));
        p.setParameter(kGain + 2, 1.0f);
    }
};

TEST_F(BandDesign, ParametersAndSoloReachTheCurves) {
    peakAt1k();
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getTotalCurves(1)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getBandCurves(0, 2)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(20)], 0.0f, 0.05f);
    p.setParameter(kSolo, 1.5f / 256);  // band 1 alone is soloed
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
    p.setParameter(kSolo, 4.5f / 256);  // band 3
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
    p.setParameter(kSolo, 0.0f);
    p.setParameter(kType + 2, stepCentre(10, kBandTypeSteps));  // switched off: flat
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
}

TEST_F(BandDesign, DesignRateFollowsRateFatAndLinPhase) {
    EXPECT_EQ(p.designRate(), 44100.0);
    p.setParameter(kFat, 0.75f);
    EXPECT_EQ(p.designRate(), 88200.0);
    p.setSampleRate(192000.0f);
    EXPECT_EQ(p.designRate(), 96000.0);
    p.setParameter(kFat, 0.25f);
    EXPECT_EQ(p.designRate(), 48000.0);
    p.setParameter(kLinPhase, 0.25f);
    EXPECT_EQ(p.designRate(), 192000.0);
    // The band's centre stays where it was set, whatever the internal rate.
    peakAt1k();
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
}

TEST_F(BandDesign, PresetLoadRefreshesCurvesAndZoomOnce) {
    p.setParameter(kAutoZoom, 0.75f);
    p.selectPreset(7);          // "Car Audio": shelves, peaks and cuts
    EXPECT_GT(peakOf(p.getTotalCurves(0)), 3.0f);
    EXPECT_GT(p.getParameter(kPlotRange), 0.0f);
    EXPECT_LT(p.getParameter(kPlotRange), 1.0f);
    p.selectPreset(0);  // "Flat": every band off
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
    EXPECT_EQ(p.getParameter(kPlotRange), 1.0f);
}

TEST_F(BandDesign, LinPhaseCurvesAreTheKernelsResponseOtherwiseTheBandsSum) {
    p.setParameter(kResolution, 1.0f);
    p.setParameter(kFat, 0.75f);
    EXPECT_EQ(p.kernelDesigner().activeFrameSize(), 32768);
    EXPECT_FALSE(p.kernelDesigner().rebuildPending());
    peakAt1k();
    const int centre = gridPoint(1000);
    EXPECT_NEAR(p.getTotalCurves(0)[centre], 24.0f, 0.1f);
    float sum = 0;
    for (int b = 0; b < 8; ++b) sum += p.getBandCurves(0, b)[centre];
    EXPECT_NE(p.getTotalCurves(0)[centre], sum);

    p.setParameter(kLinPhase, 0.25f);
    for (int i = 0; i < dsp::kPlotPoints; i += 37) {
        float s = 0;
        for (int b = 0; b < 8; ++b) s += p.getBandCurves(1, b)[i];
        EXPECT_EQ(p.getTotalCurves(1)[i], s) << i;
    }
}
