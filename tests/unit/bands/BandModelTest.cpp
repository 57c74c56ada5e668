// The band model as its owner drives it: start state, design of both sides, the solo rule,
// the rate class, the auto-zoom and what the audio thread is handed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "BandTestSupport.h"
#include "dsp/BandGrid.h"
#include "dsp/BandModel.h"

namespace {

using namespace bands_test;
using dsp::BandModel;
using dsp::BandSettings;
using dsp::kBandsPerSide;
using dsp::kPlotPoints;

// Large enough (tens of KB) to keep off the test's stack.
std::unique_ptr<BandModel> makeModel() { return std::make_unique<BandModel>(true); }

// A different peaking band on every band and side, so that any mix-up between entries shows.
void setDistinctPeaks(BandModel& m) {
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBandsPerSide; ++b)
            m.setBand(side, b, {3, 100.0 * (b + 1) + 37.0 * side, 0.4 + 0.02 * b, 1.0 + b + 0.5 * side});
}

TEST(BandModelDesign, StartsFlatDesignsBothSidesAndHonoursSolo) {
    auto m = makeModel();
    EXPECT_EQ(m->designRate(), 44100.0);
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {
        EXPECT_EQ(m->band(slot / 8, slot % 8).bandType, 7);
        EXPECT_TRUE(isIdentity(m->section(slot)) && isIdentity(m->readPublished(slot)));
    }
    for (int i = 0; i < kPlotPoints; ++i) ASSERT_TRUE(m->totalCurve(0)[i] == 0.0f && m->totalCurve(1)[i] == 0.0f);

    // One band designed: both sides, into their halves, against the prototype; and published.
    setDistinctPeaks(*m);
    m->designBand(2, 48000.0);
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {
        if (slot % 8 != 2) {
            EXPECT_TRUE(isIdentity(m->section(slot))) << "only band 3 was designed";
            continue;
        }
        const dsp::BiquadCoefficients want = bilinearSection(m->band(slot / 8, 2), 48000.0);
        EXPECT_NEAR(m->coefficients().b0[slot], want.b0, 1e-12);
        EXPECT_NEAR(m->coefficients().a2[slot], want.a2, 1e-12);
        EXPECT_TRUE(sameSection(m->readPublished(slot), m->section(slot)));
    }

    // Solo keeps only the marked bands, on both sides; clearing it restores every band.
    m->designAllBands(44100.0);
    dsp::BiquadCoefficients designed[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) designed[slot] = m->section(slot);
    m->setSoloMask(1u << 2);
    m->designAllBands(44100.0);
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {
        EXPECT_TRUE(slot % 8 == 2 ? sameSection(m->section(slot), designed[slot]) : isIdentity(m->section(slot))) << slot;
        EXPECT_TRUE(sameSection(m->readPublished(slot), m->section(slot)));
    }
    m->setSoloMask(0);
    m->designAllBands(44100.0);
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) EXPECT_TRUE(sameSection(m->readPublished(slot), designed[slot]));
}

TEST(BandModelRateClass, CurvesFollowTheClassOfTheLatestDesignRate) {
    auto m = makeModel();
    const int centre = 150;
    m->setBand(0, 0, {3, dsp::plotFrequency(centre), 0.5, 6.0});
    m->designBand(0, 44100.0);
    m->computeBandCurves();
    EXPECT_NEAR(m->bandCurve(0, 0)[centre], 12.0, 1e-4);

    // Crossing 45000 switches the grid to the 48000 class; the band is redesigned at the new
    // rate, so it still peaks where the curve's frequencies say.
    m->designBand(0, 45000.0);
    EXPECT_EQ(dsp::kRateClasses[m->rateClass()].rate, 48000.0);
    m->computeBandCurves();
    const double want = expectedBandDb(m->band(0, 0), 45000.0, 48000.0, dsp::plotFrequency(centre));
    EXPECT_NEAR(m->bandCurve(0, 0)[centre], want, 1e-4);
    EXPECT_LT(want, 11.9) << "the 48000 grid sees the 45000 design off its centre";
}

// The plot range r that shows a peak of p dB with a tenth to spare: 1.1·p = 6·2^(2 − 3r).
double rangeFor(double peakDb) { return std::clamp((std::log2(1.1 * peakDb / 6.0) - 2.0) / -3.0, 0.0, 1.0); }

TEST(BandModelAutoZoom, GainBandsCountByMagnitudeCutsOnlyThroughTheSignedTotal) {
    auto m = makeModel();
    EXPECT_EQ(m->autoZoom(), 1.0f);
    const auto redesign = [&] {
        m->designAllBands(48000.0);
        m->computeBandCurves();
    };
    m->setBand(0, 4, {3, dsp::plotFrequency(220), 0.5, 6.0});  // +12 dB in the curve
    redesign();
    EXPECT_NEAR(m->autoZoom(), rangeFor(12.0), 1e-5);
    m->setBand(1, 0, {2, 2000.0, 0.5, -9.0});  // a shelf cut reaching -18 dB on the other side
    redesign();
    EXPECT_NEAR(m->autoZoom(), rangeFor(18.0), 1e-4);
    m->setBandType(1, 0, 9);  // the same shelf switched off no longer counts
    redesign();
    EXPECT_NEAR(m->autoZoom(), rangeFor(12.0), 1e-5);

    // A deep low cut alone leaves the range; with a resonant corner it pokes above 0 dB, and the
    // total carries that bump.
    m->setBandType(0, 4, 9);
    m->setBand(0, 0, {1, 5000.0, 0.5, 0.0});
    redesign();
    EXPECT_EQ(m->autoZoom(), 1.0f);
    m->setBand(0, 0, {1, 5000.0, 1.0, 0.0});
    redesign();
    const float bump = *std::max_element(m->bandCurve(0, 0), m->bandCurve(0, 0) + kPlotPoints);
    ASSERT_GT(bump, 2.0f);
    EXPECT_NEAR(m->autoZoom(), rangeFor(bump), 1e-5);

    for (float peak : {0.0f, 0.5f, 3.0f / 1.1f, 24.0f / 1.1f, 1000.0f})
        EXPECT_NEAR(BandModel::plotRangeForPeak(peak), rangeFor(std::max(peak, 1e-9f)), 1e-6) << peak;
}

}  // namespace
