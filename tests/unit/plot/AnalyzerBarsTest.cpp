// The analyzer bar model against hand-worked timelines and an independent colour computation.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "gui/plot/AnalyzerBars.h"

namespace {

using plot::AnalyzerBars;
using plot::kBars;

std::vector<float> allAt(float dB) { return std::vector<float>(kBars, dB); }

// The textbook HSL to RGB conversion: chroma, the hue sector and the lightness offset.
CColor hslToRgb(double hue, double saturation, double lightness) {
    const double chroma = (1 - std::fabs(2 * lightness - 1)) * saturation;
    const double sector = hue * 6;
    const double x = chroma * (1 - std::fabs(std::fmod(sector, 2.0) - 1));
    double r = 0, g = 0, b = 0;
    switch (static_cast<int>(sector)) {
        case 0: r = chroma, g = x; break;
        case 1: r = x, g = chroma; break;
        case 2: g = chroma, b = x; break;
        case 3: g = x, b = chroma; break;
        case 4: r = x, b = chroma; break;
        default: r = chroma, b = x; break;
    }
    const double m = lightness - chroma / 2;
    const auto byte = [](double c) { return static_cast<uint8_t>(std::lround(255 * c)); };
    return {byte(r + m), byte(g + m), byte(b + m), 150};
}

TEST(AnalyzerColours, RainbowTableIsTheHslCircleSteppedDownTheBars) {
    for (int k = 0; k < kBars; ++k) {
        double hue = 0.6194444 - k / 45.0;
        hue -= std::floor(hue);
        const CColor want = hslToRgb(hue, 0.61, 0.65);
        EXPECT_EQ(plot::barColour(3, k), want) << k;
    }
}

TEST(AnalyzerColours, SchemesAboveTheThirdTakeTheRainbow) {
    AnalyzerBars bars;
    EXPECT_EQ(bars.colourTable(), 2);
    for (int scheme : {3, 7, -1}) {
        bars.setColorScheme(scheme);
        EXPECT_EQ(bars.colourTable(), 3) << scheme;
    }
}

TEST(AnalyzerHold, MarkHoldsASecondThenFallsThirtySixDbPerSecondToTheFloor) {
    AnalyzerBars bars;
    bars.setHoldTime(2);  // 1000 ms
    bars.setDriveDb(0);
    bars.setOn(true, 0);
    const auto loud = allAt(0), silent = allAt(-150);
    bars.advance(loud.data(), 0);
    struct Step {
        uint32_t t;
        float held;
    };
    const Step steps[] = {{500, 0}, {1000, 0}, {1500, -18}, {2000, -36}, {3000, -72}, {3700, -97.2f}, {4000, -100}, {9000, -100}};
    for (const Step& s : steps) {
        bars.advance(silent.data(), s.t);
        EXPECT_NEAR(bars.held(7), s.held, 1e-3) << s.t;
    }
}

TEST(AnalyzerHold, InfiniteHoldKeepsTheMarkAndClearingDropsIt) {
    AnalyzerBars bars;
    bars.setHoldTime(5);
    bars.setOn(true, 0);
    bars.setDriveDb(0);
    const auto loud = allAt(-6), silent = allAt(-150);
    bars.advance(loud.data(), 0);
    bars.advance(silent.data(), 60000);
    EXPECT_EQ(bars.held(0), -6);
    bars.clearHeld();
    EXPECT_EQ(bars.held(0), plot::kNothingHeld);
}

TEST(AnalyzerFade, HalfASecondInAndOneSecondOut) {
    AnalyzerBars bars;
    bars.setOn(true, 1000);
    const auto levels = allAt(-20);
    bars.advance(levels.data(), 1250);
    EXPECT_NEAR(bars.fade(), 127, 1);
    bars.advance(levels.data(), 1500);
    EXPECT_EQ(bars.fade(), 255);
    bars.setOn(false, 1500);
    for (uint32_t t = 1600; t <= 2400; t += 100) bars.advance(nullptr, t);
    EXPECT_NEAR(bars.fade(), 25, 1) << "a tenth of the way left after 900 ms";
    EXPECT_EQ(bars.colour(0).alpha, 200 * bars.fade() / 255);
    bars.advance(nullptr, 2500);
    EXPECT_EQ(bars.fade(), 0);
}

TEST(AnalyzerBarHeight, ZeroDbFillsTheSlotMinusThirtyIsEmpty) {
    struct Case {
        float dB;
        int pixels;
    };
    for (const Case c : {Case{0, 125}, Case{-30, 0}, Case{-15, 62}, Case{6, 150}, Case{-100, 0}, Case{NAN, 0}})
        EXPECT_EQ(AnalyzerBars::heightFor(c.dB), c.pixels) << c.dB;
}

TEST(AnalyzerDrive, LevelsAddTheDriveInWholeDecibels) {
    AnalyzerBars bars;
    bars.setDriveDb(5.7f);
    bars.setOn(true, 0);
    const auto levels = allAt(-20);
    bars.advance(levels.data(), 10);
    EXPECT_EQ(bars.level(3), -15);
}

}  // namespace
