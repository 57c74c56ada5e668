// What the analyzer reads for steady tones, its floor, its modes and its weightings.

#include <gtest/gtest.h>

#include <cmath>

#include "AnalyzerTestSupport.h"

namespace {

using namespace analyzer_test;

constexpr int kPeak = 0;
constexpr int kAverage = 1;

// An analyzer at `rate`, settled on a 1 kHz sine of amplitude 1.
struct SettledOnTone {
    SPAN span;
    long phase = 0;
    float rate;

    SettledOnTone(float rate, int order, int mode) : span(SPAN::Routine::scalar), rate(rate) {
        span.setFilterOrder(order);
        span.setSampleRate(rate);
        span.setMode(mode);
        feedSine(span, 1000.0, rate, static_cast<long>(rate * 1.5), phase);
    }
    Bars mean(double seconds) {
        return meanReadings(span, 1000.0, rate, static_cast<long>(rate * seconds), 97, phase);
    }
};

// The nominal figures: band 13 (1 kHz) at 0 dB, the bands a third and two thirds of an
// octave above it (12, 11) at about -18.2 / -36.8 dB with order 6 and -11.6 / -17.6 dB with
// order 2. The bands below (14, 15) run at half the rate of band 13's stage and hear the
// tone higher up their warped skirts, so they read a little lower.
struct ToneCase {
    int order;
    float neighbour;
    float nextNeighbour;
};

class OneKilohertzAt48k : public ::testing::TestWithParam<ToneCase> {};

TEST_P(OneKilohertzAt48k, ReadsNominalFiguresInBothModes) {
    const ToneCase c = GetParam();
    for (int mode : {kPeak, kAverage}) {
        SettledOnTone tone(48000.0f, c.order, mode);
        const Bars b = tone.mean(0.5);
        SCOPED_TRACE(mode == kPeak ? "peak" : "average");
        EXPECT_NEAR(b[13], 0.0, 0.15);
        EXPECT_NEAR(b[12], c.neighbour, 0.2);
        EXPECT_NEAR(b[11], c.nextNeighbour, 0.2);
        EXPECT_NEAR(b[14], c.neighbour, 0.6);
        EXPECT_NEAR(b[15], c.nextNeighbour, 1.0);
        for (int i = 0; i < SPAN::kBands; ++i) {
            if (i < 11 || i > 15) {
                EXPECT_LT(b[i], c.nextNeighbour) << "band " << i;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(BothOrders, OneKilohertzAt48k,
                         ::testing::Values(ToneCase{6, -18.2f, -36.8f}, ToneCase{2, -11.6f, -17.6f}),
                         [](const auto& info) { return "order" + std::to_string(info.param.order); });

class OneKilohertzAtEveryRate : public ::testing::TestWithParam<int> {};

TEST_P(OneKilohertzAtEveryRate, MatchesThePredictionAndReadsTheSameEverywhere) {
    const int order = GetParam();
    float band13[6];
    for (int r = 0; r < 6; ++r) {
        SettledOnTone tone(kRates[r], order, kAverage);
        const Bars b = tone.mean(0.5);
        for (int i = 11; i <= 15; ++i) {
            EXPECT_NEAR(b[i], predictedReadingDb(i, 1000.0, kRates[r], order), 0.05)
                << "band " << i << " at " << kRates[r];
        }
        band13[r] = b[13];
    }
    for (int r = 1; r < 6; ++r) EXPECT_NEAR(band13[r], band13[0], 0.06) << kRates[r];
}

INSTANTIATE_TEST_SUITE_P(BothOrders, OneKilohertzAtEveryRate, ::testing::Values(2, 6),
                         [](const auto& info) { return "order" + std::to_string(info.param); });

class ToneInEveryBand : public ::testing::TestWithParam<int> {};

// A sine at a band's nominal centre reads 0 dB there, up to what the decimation low-passes
// on its way take off (about 0.1 dB each for order 2, nothing visible for order 6).
TEST_P(ToneInEveryBand, ReadsZeroInItsOwnBand) {
    const int order = GetParam();
    for (float rate : {44100.0f, 48000.0f}) {
        for (int band = 0; band < SPAN::kBands; ++band) {
            SPAN span(SPAN::Routine::scalar);
            span.setFilterOrder(order);
            span.setSampleRate(rate);
            span.setMode(kAverage);
            const double f = nominalCentre(band);
            long phase = 0;
            feedSine(span, f, rate, static_cast<long>(rate * 1.2), phase);
            const Bars b = meanReadings(span, f, rate, static_cast<long>(rate * 0.5), 101, phase);
            EXPECT_NEAR(b[band], predictedReadingDb(band, f, rate, order), 0.05) << "band " << band << " at " << rate;
            EXPECT_NEAR(b[band], 0.0, order == 2 ? 0.55 : 0.1) << "band " << band << " at " << rate;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(BothOrders, ToneInEveryBand, ::testing::Values(2, 6),
                         [](const auto& info) { return "order" + std::to_string(info.param); });

TEST(SpanInactive, UnsupportedRateMeasuresNothingAndReadsTheFloor) {
    SPAN span(SPAN::Routine::scalar);
    span.setSampleRate(32000.0f);
    EXPECT_EQ(span.sampleRate(), 0.0f);
    long phase = 0;
    feedSine(span, 1000.0, 32000.0, 32000, phase);
    for (float v : readBars(span).db) EXPECT_FLOAT_EQ(v, -200.0f);
    span.setMode(kAverage);
    for (float v : readBars(span).db) EXPECT_NEAR(v, -96.99f, 0.005f);
    span.setMode(2);
    for (float v : readBars(span).db) EXPECT_FLOAT_EQ(v, -100.0f);

    // Speed and order changes keep it inactive; a supported rate wakes it up.
    span.setSpeed(1);
    span.setFilterOrder(6);
    EXPECT_EQ(span.sampleRate(), 0.0f);
    span.setSampleRate(48000.0f);
    EXPECT_EQ(span.sampleRate(), 48000.0f);
    feedSine(span, 1000.0, 48000.0, 72000, phase);
    EXPECT_NEAR(readBars(span)[13], -3.01, 0.15);
}

TEST(SpanWeighting, OffsetsFollowTheTablesFromTheLowestBandUp) {
    SPAN span(SPAN::Routine::scalar);
    span.setMode(2);  // readings of the floor are then exactly -100 dB
    span.setWeighting(1);
    Bars b = readBars(span);
    EXPECT_NEAR(b[30], -150.5f, 1e-4f);
    EXPECT_NEAR(b[9], -98.7f, 1e-4f);
    EXPECT_NEAR(b[13], -100.0f, 1e-4f);  // 1 kHz is the reference
    EXPECT_NEAR(b[0], -109.3f, 1e-4f);
    span.setWeighting(2);
    b = readBars(span);
    EXPECT_NEAR(b[30], -106.2f, 1e-4f);
    EXPECT_NEAR(b[0], -111.2f, 1e-4f);
    EXPECT_NEAR(b[15], -100.0f, 1e-4f);
    span.setWeighting(7);  // anything else is flat
    for (float v : readBars(span).db) EXPECT_FLOAT_EQ(v, -100.0f);
}

TEST(SpanModes, SwitchingToAverageKeepsASteadyReading) {
    SettledOnTone tone(48000.0f, 6, kPeak);
    const Bars before = readBars(tone.span);
    tone.span.setMode(kAverage);
    const Bars after = readBars(tone.span);
    for (int i = 0; i < SPAN::kBands; ++i) {
        if (before[i] > -90.0f) {
            EXPECT_NEAR(after[i], before[i], 0.001) << "band " << i;
        }
    }
    EXPECT_NEAR(after[13], 0.0, 0.15);
}

TEST(SpanModes, SwitchingBackToPeakRecoversWithinOnePeriod) {
    SettledOnTone tone(48000.0f, 6, kAverage);
    tone.span.setMode(kPeak);
    // No conversion: the mean square 0.5 of the sine now reads as an amplitude.
    EXPECT_NEAR(readBars(tone.span)[13], -6.02, 0.2);
    feedSine(tone.span, 1000.0, 48000.0, 48, tone.phase);
    EXPECT_NEAR(readBars(tone.span)[13], 0.0, 0.15);
}

TEST(SpanModes, HigherModeDetectsLikeAverageWithoutTheSineOffset) {
    SettledOnTone average(48000.0f, 6, kAverage);
    SettledOnTone higher(48000.0f, 6, 3);
    const Bars a = readBars(average.span), h = readBars(higher.span);
    for (int i = 0; i < SPAN::kBands; ++i) EXPECT_NEAR(h[i], a[i] - 3.0103f, 1e-3) << "band " << i;
}

TEST(SpanLifecycle, StartsAtOrder2Peak44100AndDropsToTheFloorOnEveryRestart) {
    SPAN span(SPAN::Routine::scalar);
    EXPECT_EQ(span.sampleRate(), 44100.0f);
    EXPECT_EQ(span.filterOrder(), 2);
    EXPECT_EQ(span.mode(), kPeak);
    EXPECT_EQ(span.speed(), 0);

    long phase = 0;
    auto measureThen = [&](auto restart) {
        feedSine(span, 1000.0, span.sampleRate(), 20000, phase);
        ASSERT_GT(readBars(span)[13], -1.0f);
        restart();
        for (float v : readBars(span).db) EXPECT_FLOAT_EQ(v, -200.0f);
    };
    measureThen([&] { span.reset(); });
    measureThen([&] { span.setSampleRate(48000.0f); });
    measureThen([&] { span.setSpeed(2); });
    measureThen([&] { span.setFilterOrder(6); });
    EXPECT_EQ(span.filterOrder(), 6);
    span.setFilterOrder(4);  // anything but 2 is order 6
    EXPECT_EQ(span.filterOrder(), 6);
    span.setFilterOrder(2);
    EXPECT_EQ(span.filterOrder(), 2);
}

TEST(SpanLifecycle, NullReadOutIsIgnored) {
    SPAN span;
    span.getBars(nullptr);
}

}  // namespace
