// When each group of bands is updated, and how fast the detectors release.

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "AnalyzerTestSupport.h"

namespace {

using namespace analyzer_test;

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

class SpanSchedule : public ::testing::TestWithParam<SPAN::Routine> {};

TEST_P(SpanSchedule, GroupsRunOnTheirOwnStaggeredSamples) {
    constexpr int kSamples = 200;
    const std::set<int> expected[] = {
        schedule(1, 1, kSamples), schedule(1, 1, kSamples),  schedule(2, 2, kSamples),
        schedule(3, 4, kSamples), schedule(5, 8, kSamples),  schedule(9, 16, kSamples),
        schedule(17, 32, kSamples),
    };
    SPAN span(GetParam());
    span.setSampleRate(48000.0f);  // peak mode: the first, tiny outputs of a stage already lift its levels
    for (int pass = 0; pass < 2; ++pass) {  // the same again after a reset
        const auto updates = observedUpdates(span, kSamples);
        for (std::size_t g = 0; g < std::size(kGroups); ++g) {
            EXPECT_EQ(updates[g], expected[g]) << kGroups[g].name << ", pass " << pass;
        }
        EXPECT_EQ(*updates[6].begin(), 17);  // the bottom group's first update
        span.reset();
    }
}

INSTANTIATE_TEST_SUITE_P(BothRoutines, SpanSchedule,
                         ::testing::Values(SPAN::Routine::scalar, SPAN::Routine::vector),
                         [](const auto& info) { return info.param == SPAN::Routine::scalar ? "scalar" : "vector"; });

// After a tone stops, a peak reading falls by 20 log10(e) dB per time constant and an
// average reading by half that. One band per group; bands ring out long before the
// measurement starts.
struct SpeedCase {
    int speed;
    double upperSeconds;
    double bottomSeconds;
};

class SpanRelease : public ::testing::TestWithParam<SpeedCase> {};

TEST_P(SpanRelease, FollowsTheTimeConstantOfTheSpeed) {
    const SpeedCase c = GetParam();
    constexpr float kRate = 48000.0f;
    constexpr int kProbeBands[] = {4, 9, 12, 15, 18, 21, 24};
    for (int mode : {0, 1}) {
        for (int band : kProbeBands) {
            SPAN span(SPAN::Routine::scalar);
            span.setFilterOrder(6);
            span.setSampleRate(kRate);
            span.setSpeed(c.speed);
            span.setMode(mode);
            long phase = 0;
            feedSine(span, nominalCentre(band), kRate, static_cast<long>(kRate * 3 * c.bottomSeconds), phase);

            const double t = band >= 23 ? c.bottomSeconds : c.upperSeconds;
            feedSilence(span, static_cast<long>(kRate * 0.5));
            const float start = readBars(span)[band];
            feedSilence(span, static_cast<long>(kRate * t));
            const float end = readBars(span)[band];

            const double perTimeConstant = (mode == 0 ? 20.0 : 10.0) * std::log10(std::exp(1.0));
            EXPECT_NEAR(start - end, perTimeConstant, 0.01 * perTimeConstant)
                << "band " << band << (mode == 0 ? " peak" : " average");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EverySpeed, SpanRelease,
                         ::testing::Values(SpeedCase{0, 0.125, 0.125}, SpeedCase{1, 0.25, 0.25},
                                           SpeedCase{2, 1.0, 1.0}, SpeedCase{3, 0.15, 0.3},
                                           SpeedCase{4, 0.25, 0.5}, SpeedCase{9, 0.125, 0.125}),
                         [](const auto& info) { return "speed" + std::to_string(info.param.speed); });

}  // namespace
