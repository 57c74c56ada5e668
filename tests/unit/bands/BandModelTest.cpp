// The band model as its owner drives it: start state, design of both sides, the solo rule,
// the rate class, total curves, the auto-zoom and what the audio thread is handed.

#include <gtest/gtest.h>

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
std::unique_ptr<BandModel> makeModel(bool useSse2 = true) { return std::make_unique<BandModel>(useSse2); }

// A different peaking band on every band and side, so that any mix-up between entries shows.
void setDistinctPeaks(BandModel& m) {
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBandsPerSide; ++b)
            m.setBand(side, b, {3, 100.0 * (b + 1) + 37.0 * side, 0.4 + 0.02 * b, 1.0 + b + 0.5 * side});
}

TEST(BandModelStart, EveryBandBypassedIdentityAndFlat) {
    auto m = makeModel();
    EXPECT_EQ(m->designRate(), 44100.0);
    EXPECT_EQ(m->soloMask(), 0u);
    for (int side = 0; side < dsp::kSides; ++side) {
        for (int b = 0; b < kBandsPerSide; ++b) {
            const BandSettings& s = m->band(side, b);
            EXPECT_EQ(s.bandType, 7);
            EXPECT_EQ(s.frequency, 20000.0);
            EXPECT_EQ(s.q, 0.5);
            EXPECT_EQ(s.gain, 0.0);
            EXPECT_TRUE(isIdentity(m->section(dsp::bandSlot(side, b))));
            EXPECT_TRUE(isIdentity(m->readPublished(dsp::bandSlot(side, b))));
            for (int i = 0; i < kPlotPoints; ++i) ASSERT_EQ(m->bandCurve(side, b)[i], 0.0f);
        }
        for (int i = 0; i < kPlotPoints; ++i) ASSERT_EQ(m->totalCurve(side)[i], 0.0f);
    }
}

TEST(BandModelDesign, DesignsBothSidesIntoTheirHalvesAndPublishesThem) {
    auto m = makeModel();
    setDistinctPeaks(*m);
    m->designBand(2, 48000.0);
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBandsPerSide; ++b) {
            const int slot = dsp::bandSlot(side, b);
            if (b != 2) {
                EXPECT_TRUE(isIdentity(m->section(slot))) << "only band 3 was designed";
                continue;
            }
            const dsp::BiquadCoefficients want = bilinearSection(m->band(side, b), 48000.0);
            EXPECT_NEAR(m->coefficients().b0[slot], want.b0, 1e-12);
            EXPECT_NEAR(m->coefficients().b1[slot], want.b1, 1e-12);
            EXPECT_NEAR(m->coefficients().a2[slot], want.a2, 1e-12);
            EXPECT_TRUE(sameSection(m->readPublished(slot), m->section(slot)));
        }
    EXPECT_EQ(dsp::bandSlot(1, 2), 10);
}

TEST(BandModelDesign, SoloKeepsOnlyTheMarkedBandsAndClearingRestoresAll) {
    auto m = makeModel();
    setDistinctPeaks(*m);
    m->designAllBands(44100.0);
    dsp::BiquadCoefficients designed[dsp::kBandSlots];
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) designed[slot] = m->section(slot);

    m->setSoloMask(1u << 2);  // band 3 alone
    m->designAllBands(44100.0);
    for (int side = 0; side < dsp::kSides; ++side)
        for (int b = 0; b < kBandsPerSide; ++b) {
            const int slot = dsp::bandSlot(side, b);
            if (b == 2)
                EXPECT_TRUE(sameSection(m->section(slot), designed[slot]));
            else
                EXPECT_TRUE(isIdentity(m->section(slot))) << "side " << side << " band " << b + 1;
            EXPECT_TRUE(sameSection(m->readPublished(slot), m->section(slot)));
        }

    m->setSoloMask(0b101);  // bands 1 and 3
    m->designAllBands(44100.0);
    for (int b = 0; b < kBandsPerSide; ++b)
        EXPECT_EQ(isIdentity(m->section(b)), b != 0 && b != 2) << "band " << b + 1;

    m->setSoloMask(0);
    m->designAllBands(44100.0);
    for (int slot = 0; slot < dsp::kBandSlots; ++slot) {
        EXPECT_TRUE(sameSection(m->section(slot), designed[slot]));
        EXPECT_TRUE(sameSection(m->readPublished(slot), designed[slot]));
    }
}

TEST(BandModelRateClass, ThresholdsSelectTheSixClasses) {
    struct Case {
        double rate;
        double classRate;
    };
    const Case cases[] = {
        {8000, 44100},    {44100, 44100},   {44999.99, 44100}, {45000, 48000},   {48000, 48000},
        {49999.9, 48000}, {50000, 88200},   {88200, 88200},    {89999, 88200},   {90000, 96000},
        {99999, 96000},   {100000, 176400}, {176400, 176400},  {189999, 176400}, {190000, 192000},
        {192000, 192000}, {384000, 192000},
    };
    for (const Case& c : cases)
        EXPECT_EQ(dsp::kRateClasses[dsp::rateClassFor(c.rate)].rate, c.classRate) << c.rate;
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

TEST(BandModelCurves, TotalsAreSumsOfBandCurvesUnlessGivenFromOutside) {
    auto m = makeModel(false);
    setDistinctPeaks(*m);
    m->setBand(1, 7, {0, 80.0, 0.5, 0.0});
    m->designAllBands(96000.0);
    m->computeBandCurves();
    m->computeTotalCurves();
    for (int side = 0; side < dsp::kSides; ++side)
        for (int i = 0; i < kPlotPoints; ++i) {
            float sum = 0.0f;
            for (int b = 0; b < kBandsPerSide; ++b) sum += m->bandCurve(side, b)[i];
            ASSERT_EQ(m->totalCurve(side)[i], sum);
        }

    dsp::Curve measured;
    for (int i = 0; i < kPlotPoints; ++i) measured[i] = 0.25f * i;
    m->setTotalCurve(1, measured);
    EXPECT_EQ(m->totalCurve(1)[100], 25.0f);
    EXPECT_NE(m->totalCurve(0)[100], 25.0f);
}

// r solves 1.1·peak = 6·2^(2 − 3r).
double rangeFor(double peakDb) { return (std::log2(1.1 * peakDb / 6.0) - 2.0) / -3.0; }

TEST(BandModelAutoZoom, FlatGivesOneAndPeaksGiveTheirRange) {
    auto m = makeModel();
    EXPECT_EQ(m->autoZoom(), 1.0f);

    const int centre = 220;
    m->setBand(0, 4, {3, dsp::plotFrequency(centre), 0.5, 6.0});  // +12 dB in the curve
    m->designAllBands(48000.0);
    m->computeBandCurves();
    EXPECT_NEAR(m->autoZoom(), rangeFor(12.0), 1e-5);

    // A shelf cut on the other side reaches -18 dB: only its magnitude counts for a gain band.
    m->setBand(1, 0, {2, 2000.0, 0.5, -9.0});
    m->designAllBands(48000.0);
    m->computeBandCurves();
    EXPECT_NEAR(m->autoZoom(), rangeFor(18.0), 1e-4);

    // The same shelf switched off no longer counts.
    m->setBandType(1, 0, 9);
    m->designAllBands(48000.0);
    m->computeBandCurves();
    EXPECT_NEAR(m->autoZoom(), rangeFor(12.0), 1e-5);
}

TEST(BandModelAutoZoom, CutsRaiseThePeakOnlyThroughTheSignedTotal) {
    auto m = makeModel();
    m->setBand(0, 0, {1, 5000.0, 0.5, 0.0});  // deep negative curve, no gain band
    m->designAllBands(44100.0);
    m->computeBandCurves();
    EXPECT_EQ(m->autoZoom(), 1.0f);

    // A low cut with a resonant corner pokes above 0 dB; the total carries that bump.
    m->setBand(0, 0, {1, 5000.0, 1.0, 0.0});
    m->designAllBands(44100.0);
    m->computeBandCurves();
    float bump = 0.0f;
    for (int i = 0; i < kPlotPoints; ++i) bump = std::max(bump, m->bandCurve(0, 0)[i]);
    ASSERT_GT(bump, 2.0f);
    EXPECT_NEAR(m->autoZoom(), rangeFor(bump), 1e-5);
}

TEST(BandModelAutoZoom, RangeIsClampedToTheUnitInterval) {
    EXPECT_EQ(BandModel::plotRangeForPeak(0.0f), 1.0f);
    EXPECT_EQ(BandModel::plotRangeForPeak(0.5f), 1.0f);
    EXPECT_EQ(BandModel::plotRangeForPeak(1000.0f), 0.0f);
    EXPECT_NEAR(BandModel::plotRangeForPeak(24.0f / 1.1f), 0.0f, 1e-6);
    EXPECT_NEAR(BandModel::plotRangeForPeak(3.0f / 1.1f), 1.0f, 1e-6);
}

}  // namespace
