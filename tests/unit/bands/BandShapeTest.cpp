// Each shape's curve on the plot grid against the analytic |H|² of its analog prototype; the
// slopes and levels the shape names promise; and the two curve routines against each other.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "BandTestSupport.h"
#include "dsp/BandCurve.h"
#include "dsp/BandGrid.h"
#include "dsp/BandSectionDesign.h"

namespace {

using namespace bands_test;
using dsp::BandSettings;
using dsp::BiquadCoefficients;
using dsp::Curve;
using dsp::kPlotPoints;

struct CurveOf {
    Curve db;
    float operator[](int i) const { return db[i]; }
};

// The curve as the engine draws it: designed at designRate, evaluated on that rate's class table.
CurveOf curveOf(const BandSettings& band, double designRate) {
    CurveOf c{};
    const dsp::BandGridTable& grid = dsp::bandGridTable(dsp::rateClassFor(designRate));
    dsp::computeBandCurvePlain(dsp::designBandSection(band, designRate), grid, c.db);
    return c;
}

int gridIndexNear(double f) {
    return static_cast<int>(std::lround(std::log(f / 20.0) / std::log(1000.0) * kPlotPoints));
}

// dB per octave between two grid points.
double slope(const CurveOf& c, int i, int j) {
    return (c[j] - c[i]) / std::log2(dsp::plotFrequency(j) / dsp::plotFrequency(i));
}

// Off-class design rates are drawn on the grid of their class (47250 → 48000, 22050 → 44100).
TEST(CurveAgainstAnalytic, EveryShapeFrequencyQAndGain) {
    const struct {
        double designRate, classRate;
    } rates[] = {{44100, 44100}, {48000, 48000}, {88200, 88200}, {96000, 96000},
                 {176400, 176400}, {192000, 192000}, {47250, 48000}, {22050, 44100}};
    for (const auto& rc : rates)
    for (int bandType = 0; bandType < 14; ++bandType)  // 7..13 are switched off: flat
        for (double f : {40.0, 1000.0, 9000.0})
            for (double q : {0.1, 0.5, 0.95})
                for (double g : {-11.0, -4.0, 9.0}) {
                    const BandSettings band{bandType, f, q, g};
                    const CurveOf c = curveOf(band, rc.designRate);
                    int checked = 0;
                    for (int i = 0; i < kPlotPoints; ++i) {
                        const double fi = dsp::plotFrequency(i);
                        if (fi >= rc.classRate / 2) break;
                        const double want = expectedBandDb(band, rc.designRate, rc.classRate, fi);
                        // Rounding the ratio and the logarithm to float costs under 1e-6 dB
                        // near 0 dB and a relative 1e-6 elsewhere.
                        const double tolerance = 1e-5 + 2e-6 * std::fabs(want);
                        ASSERT_NEAR(c[i], want, tolerance) << "rate " << rc.designRate << " type " << bandType << " f "
                                                           << f << " q " << q << " g " << g << " point " << i;
                        ++checked;
                    }
                    EXPECT_GT(checked, 300);
                }
}

// The prototypes themselves against what the shapes' names promise.
TEST(BandCurveShape, LevelsAndSlopesAreWhatTheNamesPromise) {
    // Well below (above) the corner a section of order n squared falls at 2n·20·log10(2) dB
    // per octave, the "12" and "24 dB/oct" of the names; the high cuts are measured at the
    // highest rate class, where the bilinear warping is negligible an octave above 1 kHz.
    const double perOrder = 2.0 * 20.0 * std::log10(2.0), rate = 192000.0;
    const int low = gridIndexNear(25.0), lowOctave = gridIndexNear(50.0);
    const int high = gridIndexNear(1000.0), highOctave = gridIndexNear(2000.0);
    EXPECT_NEAR(slope(curveOf({0, 2000.0, 0.5, 0.0}, rate), low, lowOctave), perOrder, 0.01);
    EXPECT_NEAR(slope(curveOf({1, 2000.0, 0.5, 0.0}, rate), low, lowOctave), 2 * perOrder, 0.01);
    EXPECT_NEAR(slope(curveOf({5, 40.0, 0.5, 0.0}, rate), high, highOctave), -perOrder, 0.02);
    EXPECT_NEAR(slope(curveOf({6, 40.0, 0.5, 0.0}, rate), high, highOctave), -2 * perOrder, 0.02);
    EXPECT_NEAR(curveOf({1, 100.0, 0.5, 0.0}, rate)[high], 0.0, 1e-3);  // passbands stay flat
    EXPECT_NEAR(curveOf({6, 2000.0, 0.5, 0.0}, rate)[low], 0.0, 1e-3);
    // Shelves level out, and a peak tops out at its centre, at twice the section gain.
    for (double g : {-12.0, 9.0}) {
        EXPECT_NEAR(curveOf({2, 1000.0, 0.5, g}, 44100.0)[0], 2 * g, 0.01);
        EXPECT_NEAR(curveOf({2, 1000.0, 0.5, g}, 44100.0)[kPlotPoints - 1], 0.0, 0.01);
        EXPECT_NEAR(curveOf({4, 300.0, 0.5, g}, 192000.0)[0], 0.0, 0.02);
        EXPECT_NEAR(curveOf({4, 300.0, 0.5, g}, 192000.0)[kPlotPoints - 1], 2 * g, 0.01);
        const CurveOf peak = curveOf({3, dsp::plotFrequency(200), 0.5, g}, 48000.0);
        EXPECT_NEAR(peak[200], 2 * g, 1e-4);
        EXPECT_GT(std::fabs(peak[200]), std::fabs(peak[199]));
        EXPECT_GT(std::fabs(peak[200]), std::fabs(peak[201]));
    }
}

TEST(BandCurveRoutines, Sse2AndPlainAgreeBitForBit) {
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> type(0, 13);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int round = 0; round < 300; ++round) {
        const BandSettings band{type(random), 20.0 * std::pow(10.0, 3.0 * unit(random)), unit(random),
                                (unit(random) - 0.5) * 24.0};
        const int rateClass = round % dsp::kRateClassCount;
        const double rate = dsp::kRateClasses[rateClass].rate * (0.9 + 0.2 * unit(random));
        const dsp::BiquadCoefficients section = dsp::designBandSection(band, rate);
        const dsp::BandGridTable& grid = dsp::bandGridTable(rateClass);
        Curve plain, sse2;
        dsp::computeBandCurvePlain(section, grid, plain);
        dsp::computeBandCurveSse2(section, grid, sse2);
        ASSERT_EQ(std::memcmp(plain, sse2, sizeof(Curve)), 0) << "round " << round << " type " << band.bandType;
    }
}

}  // namespace
