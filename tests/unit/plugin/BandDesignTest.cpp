// The plug-in drives the band design: parameters reach the curves, Solo and the rate-changing
// switches redesign every band, a preset load refreshes the curves, and the kernels follow.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "PluginHarness.h"

namespace {

// Index of the plot grid point nearest to f.
int gridPoint(double f) { return static_cast<int>(std::lround(453.0 * std::log(f / 20.0) / std::log(1000.0))); }

float peakOf(const dsp::Curve& c) { return *std::max_element(c, c + dsp::kPlotPoints); }

}  // namespace

class BandDesign : public ::testing::Test {
protected:
    PluginHarness h;
    Plugin& p = *h.plugin;

    // Band 3 (index 2) as a peaking band at 1 kHz, +12 dB per section, on both sides (LINK).
    void peakAt1k() {
        p.setParameter(8, 3.5f / 14);
        p.setParameter(24, static_cast<float>(std::log10(1000.0 / 20.0) / 3.0));
        p.setParameter(56, 1.0f);
    }
};

TEST_F(BandDesign, ParametersAndSoloReachTheCurves) {
    peakAt1k();
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getTotalCurves(1)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getBandCurves(0, 2)[gridPoint(1000)], 24.0f, 0.2f);
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(20)], 0.0f, 0.05f);
    p.setParameter(79, 1.5f / 256);  // band 1 alone is soloed
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
    p.setParameter(79, 4.5f / 256);  // band 3
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
    p.setParameter(79, 0.0f);
    // Switching it off leaves the band flat.
    p.setParameter(8, 10.5f / 14);
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
}

TEST_F(BandDesign, DesignRateFollowsRateFatAndLinPhase) {
    EXPECT_EQ(p.designRate(), 44100.0);
    p.setParameter(1, 0.75f);
    EXPECT_EQ(p.designRate(), 88200.0);
    p.setSampleRate(192000.0f);
    EXPECT_EQ(p.designRate(), 96000.0);
    p.setParameter(1, 0.25f);
    EXPECT_EQ(p.designRate(), 48000.0);
    p.setParameter(3, 0.25f);
    EXPECT_EQ(p.designRate(), 192000.0);
    // The band's centre stays where it was set, whatever the internal rate.
    peakAt1k();
    EXPECT_NEAR(p.getTotalCurves(0)[gridPoint(1000)], 24.0f, 0.2f);
}

TEST_F(BandDesign, PresetLoadRefreshesCurvesAndZoomOnce) {
    p.setParameter(80, 0.75f);  // AutoZoom on
    p.selectPreset(7);          // "Car Audio": shelves, peaks and cuts
    float peak = 0;
    for (int i = 0; i < dsp::kPlotPoints; ++i) peak = std::max(peak, std::fabs(p.getTotalCurves(0)[i]));
    EXPECT_GT(peak, 3.0f);
    EXPECT_GT(p.getParameter(70), 0.0f);
    EXPECT_LT(p.getParameter(70), 1.0f);
    p.selectPreset(0);  // "Flat": every band off
    EXPECT_NEAR(peakOf(p.getTotalCurves(0)), 0.0f, 1e-6f);
    EXPECT_EQ(p.getParameter(70), 1.0f);
}

TEST_F(BandDesign, KernelsFollowTheFrameAndLinPhase) {
    EXPECT_EQ(p.kernelDesigner().activeFrameSize(), 4096);
    p.setParameter(4, 1.0f);  // Resolution high
    EXPECT_EQ(p.kernelDesigner().activeFrameSize(), 16384);
    p.setParameter(1, 0.75f);  // FAT
    EXPECT_EQ(p.kernelDesigner().activeFrameSize(), 32768);
    EXPECT_FALSE(p.kernelDesigner().rebuildPending());

    // With LinPhase on the plot shows the kernel's measured response: close to the bands' sum
    // where the 32768-tap kernel resolves the band, not bit-equal to it.
    peakAt1k();
    const int centre = gridPoint(1000);
    EXPECT_NEAR(p.getTotalCurves(0)[centre], 24.0f, 0.1f);
    float sum = 0;
    for (int b = 0; b < 8; ++b) sum += p.getBandCurves(0, b)[centre];
    EXPECT_NE(p.getTotalCurves(0)[centre], sum);

    // With LinPhase off the totals are exactly the sums of the band curves.
    p.setParameter(3, 0.25f);
    for (int i = 0; i < dsp::kPlotPoints; i += 37) {
        float s = 0;
        for (int b = 0; b < 8; ++b) s += p.getBandCurves(1, b)[i];
        EXPECT_EQ(p.getTotalCurves(1)[i], s) << i;
    }
}
