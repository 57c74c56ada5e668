// The plot's axes and handle hit test, checked against the numbers the layout fixes.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "gui/plot/PlotGeometry.h"
#include "gui/plot/SettingsPage.h"

namespace {

const plot::PlotGeometry kPlot(CRect(30, 20, 548, 163));

TEST(PlotAxes, LevelRangesAndBothAxes) {
    struct Range {
        double p, dB;
    };
    for (const Range r : {Range{0, 24}, Range{1.0 / 3, 12}, Range{2.0 / 3, 6}, Range{1, 3}})
        EXPECT_NEAR(plot::rangeDb(r.p), r.dB, 1e-9) << r.p;
    EXPECT_EQ(kPlot.frequencyX(20), 70);
    EXPECT_EQ(kPlot.frequencyX(200), 70 + 151);
    EXPECT_EQ(kPlot.frequencyX(1000), 70 + 256);  // 453·log10(50)/3 = 256.9, truncated
    EXPECT_DOUBLE_EQ(kPlot.levelY(12, 12), 36);
    // Gain 0.75 is +12 dB: half way up on the fixed ±24 dB scale, at the top edge of a ±12 dB axis.
    EXPECT_DOUBLE_EQ(kPlot.fixedHandleY(0.75), 99 - 31.5);
    EXPECT_DOUBLE_EQ(kPlot.drawnHandleY(kPlot.fixedHandleY(0.75), 12), 36);
}

TEST(PlotHitTest, ReachOfTenPixelsAndTheLowestBandWins) {
    plot::HandleSpot spots[plot::kBandCount] = {};
    spots[3] = {true, 100, 80};
    spots[5] = {true, 105, 85};
    spots[6] = {false, 100, 80};
    struct Case {
        double x, y;
        int band;
    };
    const Case cases[] = {
        {170, 80, 3}, {180, 90, 3}, {160, 70, 3}, {181, 80, 5}, {159, 80, -1},
        {170, 69, -1}, {185, 95, 5}, {186, 95, -1}, {300, 150, -1},
    };
    for (const Case& c : cases) EXPECT_EQ(plot::hitHandle(kPlot, spots, c.x, c.y), c.band) << c.x << "," << c.y;
}

TEST(PlotCurves, SimplifiedPolylineStaysWithinReachOfEveryPoint) {
    constexpr int kCount = 453;
    CPoint original[kCount], points[kCount];
    for (int x = 0; x < kCount; ++x) {
        // Two resonances and a shelf, in pixels.
        const double y = 99 - 30 / (1 + std::pow((x - 120) / 6.0, 2)) + 20 / (1 + std::pow((x - 300) / 25.0, 2)) +
                         10 * std::tanh((x - 400) / 15.0);
        original[x] = points[x] = CPoint(70 + x, y);
    }
    const int kept = plot::simplifyPolyline(points, kCount, 0.1);
    EXPECT_LT(kept, kCount / 3) << "flat stretches collapse";
    EXPECT_EQ(points[0], original[0]);
    EXPECT_EQ(points[kept - 1], original[kCount - 1]);
    int segment = 0;
    for (const CPoint& p : original) {
        while (points[segment + 1].x < p.x) ++segment;
        const CPoint& a = points[segment];
        const CPoint& b = points[segment + 1];
        const double onLine = a.y + (b.y - a.y) * (p.x - a.x) / (b.x - a.x);
        EXPECT_NEAR(onLine, p.y, 0.1 + 1e-9) << p.x;
    }
}

TEST(SettingsRows, ValuesOutsideTheirListReadNotAvailableAndClicksWrap) {
    plot::SettingsPage page;
    page.setIndex(plot::kHoldItem, 5);
    EXPECT_STREQ(page.valueText(plot::kHoldItem), "INFINITE");
    EXPECT_EQ(page.nextIndex(plot::kHoldItem), 0);
    page.setIndex(plot::kHoldItem, 9);
    EXPECT_STREQ(page.valueText(plot::kHoldItem), "n/a");
    EXPECT_EQ(page.nextIndex(plot::kHoldItem), 0);
    EXPECT_STREQ(plot::settingsRow(plot::kSpeedItem).label, "Analyzer:      speed");
    for (int item = 0; item < plot::kSettingsItems; ++item) {
        const char* label = plot::settingsRow(item).label;
        if (!label) continue;
        EXPECT_EQ(std::string(label).size(), 20u) << item;
    }
}

}  // namespace
