// What the analyzer reads for steady tones, its floor, its modes and its weightings; when each
// group of bands updates and how fast the detectors release; and its two routines.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <xmmintrin.h>

#include "AnalyzerTestSupport.h"

namespace {

using namespace analyzer_test;

constexpr int kPeak = 0;
constexpr int kAverage = 1;

// An analyzer at `rate`, settled on a sine of amplitude 1 at f.
struct SettledOnTone {
    SPAN span;
    long phase = 0;
    float rate;
    double f;

    SettledOnTone(float rate, int order, int mode, double f = 1000.0) : span(SPAN::Routine::scalar), rate(rate), f(f) {
        span.setFilterOrder(order);
        span.setSampleRate(rate);
        span.setMode(mode);
        feedSine(span, f, rate, static_cast<long>(rate * 1.5), phase);
    }
    Bars mean(double seconds) { return meanReadings(span, f, rate, static_cast<long>(rate * seconds), 97, phase); }
};

TEST(OneKilohertzAtEveryRate, MatchesThePredictionAndReadsTheSameEverywhere) {
    for (int order : {2, 6}) {
        float band13[6];
        for (int r = 0; r < 6; ++r) {
            SCOPED_TRACE("order " + std::to_string(order) + " at " + std::to_string(kRates[r]));
            const Bars b = SettledOnTone(kRates[r], order, kAverage).mean(0.5);
            for (int i = 11; i <= 15; ++i) EXPECT_NEAR(b[i], predictedReadingDb(i, 1000.0, kRates[r], order), 0.05) << i;
            for (int i = 0; i < SPAN::kBands; ++i)  // the farther bands lie below the next neighbours
                if (i < 11 || i > 15) EXPECT_LT(b[i], std::max(b[11], b[15])) << i;
            band13[r] = b[13];
        }
        for (int r = 1; r < 6; ++r) EXPECT_NEAR(band13[r], band13[0], 0.06) << kRates[r];
    }
}

// A sine at a band's nominal centre reads 0 dB there, up to what the decimation low-passes
// on its way take off (about 0.1 dB each for order 2, nothing visible for order 6).
TEST(ToneInEveryBand, ReadsZeroInItsOwnBand) {
    for (int order : {2, 6})
        for (float rate : {44100.0f, 48000.0f})
            for (int band = 0; band < SPAN::kBands; ++band) {
                const double f = nominalCentre(band);
                const Bars b = SettledOnTone(rate, order, kAverage, f).mean(0.5);
                SCOPED_TRACE("order " + std::to_string(order) + " band " + std::to_string(band) + " at " + std::to_string(rate));
                EXPECT_NEAR(b[band], predictedReadingDb(band, f, rate, order), 0.05);
                EXPECT_NEAR(b[band], 0.0, order == 2 ? 0.55 : 0.1);
            }
}

// An analyzer at a rate it has no tables for measures nothing: every bar reads the floor of
// its detector mode, shifted by the weighting (1 kHz the reference; band 30 is 20 Hz, band 9
// 2.5 kHz, band 0 20 kHz). Band -1 means every band.
TEST(SpanFloor, InactiveAnalyzerReadsTheFloorOfItsModeAndWeighting) {
    SPAN span(SPAN::Routine::scalar);
    span.setSampleRate(32000.0f);
    EXPECT_EQ(span.sampleRate(), 0.0f);
    long phase = 0;
    feedSine(span, 1000.0, 32000.0, 32000, phase);
    const struct {
        int mode, weighting, band;
        float db;
    } cases[] = {{kPeak, 0, -1, -200.0f},  {kAverage, 0, -1, -96.9897f}, {2, 0, -1, -100.0f},
                 {2, 1, 30, -150.5f},      {2, 1, 9, -98.7f},            {2, 1, 13, -100.0f},
                 {2, 1, 0, -109.3f},       {2, 2, 30, -106.2f},          {2, 2, 0, -111.2f},
                 {2, 2, 15, -100.0f},      {2, 7, -1, -100.0f}};  // weighting 7: anything else is flat
    for (const auto& c : cases) {
        span.setMode(c.mode);
        span.setWeighting(c.weighting);
        const Bars b = readBars(span);
        for (int i = 0; i < SPAN::kBands; ++i)
            if (c.band < 0 || c.band == i) EXPECT_NEAR(b[i], c.db, 1e-4f) << c.mode << "/" << c.weighting << " band " << i;
    }

    // Speed and order changes keep it inactive; a supported rate wakes it up.
    span.setSpeed(1);
    span.setFilterOrder(6);
    EXPECT_EQ(span.sampleRate(), 0.0f);
    span.setSampleRate(48000.0f);
    EXPECT_EQ(span.sampleRate(), 48000.0f);
    feedSine(span, 1000.0, 48000.0, 72000, phase);
    EXPECT_NEAR(readBars(span)[13], -3.01, 0.15);
}

// Peak to average keeps a steady reading; back to peak, the mean square 0.5 of the sine reads
// as an amplitude until one period has passed; the higher mode is average without the sine's
// 3 dB offset.
TEST(SpanModes, SwitchingKeepsOrRecoversTheReadingAndTheHigherModeDropsTheSineOffset) {
    SettledOnTone tone(48000.0f, 6, kPeak);
    const Bars peak = readBars(tone.span);
    tone.span.setMode(kAverage);
    const Bars average = readBars(tone.span);
    for (int i = 0; i < SPAN::kBands; ++i)
        if (peak[i] > -90.0f) EXPECT_NEAR(average[i], peak[i], 0.001) << "band " << i;
    EXPECT_NEAR(peak[13], 0.0, 0.15);
    tone.span.setMode(kPeak);
    EXPECT_NEAR(readBars(tone.span)[13], -6.02, 0.2);
    feedSine(tone.span, 1000.0, 48000.0, 48, tone.phase);
    EXPECT_NEAR(readBars(tone.span)[13], 0.0, 0.15);

    SettledOnTone averaged(48000.0f, 6, kAverage), higher(48000.0f, 6, 3);
    const Bars a = readBars(averaged.span), h = readBars(higher.span);
    for (int i = 0; i < SPAN::kBands; ++i) EXPECT_NEAR(h[i], a[i] - 3.0103f, 1e-3) << "band " << i;
}

TEST(SpanLifecycle, StartsAtOrder2Peak44100AndDropsToTheFloorOnEveryRestart) {
    SPAN span(SPAN::Routine::scalar);
    span.getBars(nullptr);  // a null read-out is ignored
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
    span.setFilterOrder(4);  // anything but 2 is order 6
    EXPECT_EQ(span.filterOrder(), 6);
    span.setFilterOrder(2);
    EXPECT_EQ(span.filterOrder(), 2);
}

struct Group {
    const char* name;
    int firstBand;
    int lastBand;
};

constexpr Group kGroups[] = {
    {"top", 0, 7},       {"stage 0", 8, 10},  {"stage 1", 11, 13}, {"stage 2", 14, 16},
    {"stage 3", 17, 19}, {"stage 4", 20, 22}, {"bottom", 23, 30},
};

// The samples (counted from 1 after a restart) on which each group's levels changed.
std::vector<std::set<int>> observedUpdates(SPAN& span, int samples) {
    std::vector<std::set<int>> updates(std::size(kGroups));
    Noise noise(12345);
    Bars last = readBars(span);
    for (int n = 1; n <= samples; ++n) {
        span.processSample(noise.next());
        const Bars now = readBars(span);
        for (std::size_t g = 0; g < std::size(kGroups); ++g) {
            bool changed = false;
            for (int i = kGroups[g].firstBand; i <= kGroups[g].lastBand; ++i) changed |= now[i] != last[i];
            if (changed) updates[g].insert(n);
        }
        last = now;
    }
    return updates;
}

// Group g (0 top, 1-5 stages 0-4, 6 bottom) first runs on sample `first` and then every
// `period` samples.
std::set<int> schedule(int first, int period, int samples) {
    std::set<int> s;
    for (int n = first; n <= samples; n += period) s.insert(n);
    return s;
}

TEST(SpanSchedule, GroupsRunOnTheirOwnStaggeredSamplesInBothRoutines) {
    constexpr int kSamples = 200;
    const std::set<int> expected[] = {
        schedule(1, 1, kSamples), schedule(1, 1, kSamples),  schedule(2, 2, kSamples),
        schedule(3, 4, kSamples), schedule(5, 8, kSamples),  schedule(9, 16, kSamples),
        schedule(17, 32, kSamples),
    };
    for (SPAN::Routine routine : {SPAN::Routine::scalar, SPAN::Routine::vector}) {
        SPAN span(routine);
        span.setSampleRate(48000.0f);  // peak mode: the first, tiny outputs of a stage already lift its levels
        for (int pass = 0; pass < 2; ++pass) {  // the same again after a reset
            const auto updates = observedUpdates(span, kSamples);
            for (std::size_t g = 0; g < std::size(kGroups); ++g)
                EXPECT_EQ(updates[g], expected[g]) << kGroups[g].name << ", pass " << pass;
            span.reset();
        }
    }
}

// After a tone stops, a peak reading falls by 20 log10(e) dB per time constant and an
// average reading by half that. One band per group; bands ring out long before the
// measurement starts.
TEST(SpanRelease, FollowsTheTimeConstantOfEverySpeed) {
    const struct {
        int speed;
        double upperSeconds, bottomSeconds;
    } speeds[] = {{0, 0.125, 0.125}, {1, 0.25, 0.25}, {2, 1.0, 1.0}, {3, 0.15, 0.3}, {4, 0.25, 0.5}, {9, 0.125, 0.125}};
    constexpr float kRate = 48000.0f;
    for (const auto& c : speeds)
        for (int mode : {kPeak, kAverage})
            for (int band : {4, 9, 12, 15, 18, 21, 24}) {
                SPAN span(SPAN::Routine::scalar);
                span.setFilterOrder(6);
                span.setSampleRate(kRate);
                span.setSpeed(c.speed);
                span.setMode(mode);
                long phase = 0;
                feedSine(span, nominalCentre(band), kRate, static_cast<long>(kRate * 3 * c.bottomSeconds), phase);
                feedSilence(span, static_cast<long>(kRate * 0.5));
                const float start = readBars(span)[band];
                feedSilence(span, static_cast<long>(kRate * (band >= 23 ? c.bottomSeconds : c.upperSeconds)));
                const double perTimeConstant = (mode == kPeak ? 20.0 : 10.0) * std::log10(std::exp(1.0));
                EXPECT_NEAR(start - readBars(span)[band], perTimeConstant, 0.01 * perTimeConstant)
                    << "speed " << c.speed << " band " << band << (mode == kPeak ? " peak" : " average");
            }
}

// Noise with bursts, level jumps and stretches of silence (so that filter states decay far
// down), read out all along.
TEST(SpanRoutinesAgree, OnLongRandomSignals) {
    const struct {
        float rate;
        int order, mode;
    } cases[] = {{44100.0f, 2, kPeak}, {48000.0f, 6, kPeak}, {96000.0f, 6, kAverage}, {192000.0f, 2, kAverage}};
    for (const auto& c : cases) {
        SPAN scalar(SPAN::Routine::scalar), vector(SPAN::Routine::vector);
        for (SPAN* s : {&scalar, &vector}) {
            s->setFilterOrder(c.order);
            s->setSampleRate(c.rate);
            s->setMode(c.mode);
            s->setSpeed(3);
        }
        Noise noise(987654321u), gains(42u);
        float maxDifference = 0.0f;
        for (int block = 0; block < 160; ++block) {
            const float r = 0.5f * (gains.next() + 1.0f);
            const float gain = block % 7 == 3 ? 0.0f : std::pow(10.0f, -4.0f * r);
            for (int n = 0; n < 4096; ++n) {
                const float x = gain * noise.next();
                scalar.processSample(x);
                vector.processSample(x);
            }
            const Bars a = readBars(scalar), b = readBars(vector);
            for (int i = 0; i < SPAN::kBands; ++i) {
                ASSERT_TRUE(std::isfinite(a[i]) && std::isfinite(b[i])) << "band " << i;
                maxDifference = std::max(maxDifference, std::abs(a[i] - b[i]));
            }
        }
        EXPECT_LT(maxDifference, 1e-3f) << c.rate << " Hz, order " << c.order << ", mode " << c.mode;
    }
}

// A hostile sample is measured as silence: the readings go on exactly as if a 0 had come,
// finite all the way, in both routines.
TEST(SpanHostileInput, ABadSampleReadsLikeSilence) {
    constexpr float kMax = std::numeric_limits<float>::max();
    for (SPAN::Routine routine : {SPAN::Routine::scalar, SPAN::Routine::vector}) {
        for (float bad : {std::numeric_limits<float>::quiet_NaN(), INFINITY, -INFINITY, kMax, -kMax, 1e30f}) {
            SPAN hit(routine), reference(routine);
            for (SPAN* s : {&hit, &reference}) {
                s->setFilterOrder(6);
                s->setSampleRate(48000.0f);
                s->setMode(kAverage);
            }
            long phaseHit = 0, phaseReference = 0;
            feedSine(hit, 1000.0, 48000.0, 4800, phaseHit);
            feedSine(reference, 1000.0, 48000.0, 4800, phaseReference);
            hit.processSample(bad);
            reference.processSample(0.0f);
            for (int block = 0; block < 8; ++block) {
                feedSine(hit, 1000.0, 48000.0, 512, phaseHit);
                feedSine(reference, 1000.0, 48000.0, 512, phaseReference);
                const Bars h = readBars(hit), r = readBars(reference);
                for (int i = 0; i < SPAN::kBands; ++i) {
                    ASSERT_TRUE(std::isfinite(h[i])) << bad << " band " << i;
                    ASSERT_EQ(h[i], r[i]) << bad << " band " << i;
                }
            }
        }
    }
}

TEST(SpanRoutine, VectorRoutineRestoresTheFloatingPointModes) {
    constexpr unsigned kFlushModes = 0x8000u | 0x0040u;  // flush-to-zero, denormals-are-zero
    constexpr unsigned kRoundUp = 0x4000u;
    SPAN span(SPAN::Routine::vector);
    const unsigned saved = _mm_getcsr();
    Noise noise(7);
    for (unsigned modes : {saved & ~kFlushModes, (saved & ~kFlushModes) | kRoundUp, saved | kFlushModes}) {
        _mm_setcsr(modes);
        for (int n = 0; n < 100; ++n) span.processSample(noise.next());
        const unsigned after = _mm_getcsr();
        _mm_setcsr(saved);
        EXPECT_EQ(after & ~0x3Fu, modes & ~0x3Fu);  // exception flags aside
    }
}

}  // namespace
