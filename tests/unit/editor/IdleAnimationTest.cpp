// The editor's idle animation against hand-worked steps: the eased plot range and the fade
// counter behind the plot's display opacity.

#include <gtest/gtest.h>

#include "gui/IdleAnimation.h"

TEST(IdleAnimation, PlotRangeEasesTowardTheTargetAndLandsOnItWhenThePeriodEnds) {
    IdleAnimation a;
    a.showRange(0.0f);
    EXPECT_EQ(a.advanceRange(25, 1.0f), 0.0f);  // no AutoZoom period: the range stays
    a.restartAutoZoom();
    EXPECT_FLOAT_EQ(a.advanceRange(50, 1.0f), 0.25f);   // a quarter of the way in 50 ms
    EXPECT_FLOAT_EQ(a.advanceRange(100, 1.0f), 0.625f);  // half of what was left in 100 ms
    EXPECT_EQ(a.advanceRange(201, 0.2f), 0.2f);          // more than 200 ms: straight there
    a.restartAutoZoom();
    a.showRange(0.0f);
    float shown = 0.0f;
    for (int step = 0; step < 39; ++step) shown = a.advanceRange(25, 1.0f);
    EXPECT_LT(shown, 1.0f);
    EXPECT_TRUE(a.easing());
    EXPECT_EQ(a.advanceRange(25, 1.0f), 1.0f);  // the 1000 ms period ends exactly on it
    EXPECT_FALSE(a.easing());
}

TEST(IdleAnimation, FadeCounterRisesFourAndFallsThreePerMillisecondWithinItsLimits) {
    IdleAnimation a;
    EXPECT_EQ(a.displayOpacity(), 255);
    a.advanceFade(125, true);  // counter 500: still opaque
    EXPECT_EQ(a.displayOpacity(), 255);
    a.advanceFade(25, true);  // 600
    EXPECT_EQ(a.displayOpacity(), 235);
    a.advanceFade(10000, true);  // held at 1775
    EXPECT_EQ(a.displayOpacity(), 0);
    a.advanceFade(100, false);  // 1475
    EXPECT_EQ(a.displayOpacity(), 60);
    a.advanceFade(10000, false);  // held at 0
    EXPECT_EQ(a.displayOpacity(), 255);
}
