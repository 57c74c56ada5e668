// The jog's geometry: which zone a point falls in, checked at a point inside and one just
// outside every boundary, and the knob indicator's path at its ends and middle.

#include <gtest/gtest.h>

#include "gui/controls/CJog.h"

namespace {

struct ZoneCase {
    const char* boundary;
    int dx, dy;
    JogZone zone;
};
constexpr ZoneCase kZoneCases[] = {
    {"knob edge, inside (r² 1600)", 0, -40, JogZone::kCentre},
    {"knob edge, outside", 0, -41, JogZone::kNone},
    {"ring inner edge, inside (r² 2116)", 0, -46, JogZone::kTop},
    {"ring inner edge, outside", 0, -45, JogZone::kNone},
    {"ring outer edge, inside (r² 3721)", 0, -61, JogZone::kTop},
    {"ring outer edge, outside (r² 3722)", 1, -61, JogZone::kNone},
    {"upper left, middle", -40, -30, JogZone::kUpperLeft},
    {"upper left, flat edge inside (s 0.34)", -50, -17, JogZone::kUpperLeft},
    {"upper left, flat edge outside (s 0.32)", -50, -16, JogZone::kNone},
    {"upper left, steep edge inside (s 1.78)", -27, -48, JogZone::kUpperLeft},
    {"upper left, steep edge outside (s 1.85)", -26, -48, JogZone::kNone},
    {"upper right, middle", 40, -30, JogZone::kUpperRight},
    {"upper right, flat edge outside", 50, -16, JogZone::kNone},
    {"upper right, steep edge inside", 27, -48, JogZone::kUpperRight},
    {"top, edge inside (s 2.55)", -20, -51, JogZone::kTop},
    {"top, edge outside (s 2.43)", -21, -51, JogZone::kNone},
    {"top, right edge inside", 20, -51, JogZone::kTop},
    {"lower left, middle", -40, 30, JogZone::kLowerLeft},
    {"lower left, flat edge inside (s 0.44)", -50, 22, JogZone::kLowerLeft},
    {"lower left, flat edge outside (s 0.42)", -50, 21, JogZone::kNone},
    {"lower left, steep edge inside (s 2.27)", -22, 50, JogZone::kLowerLeft},
    {"lower left, steep edge outside (s 2.38)", -21, 50, JogZone::kNone},
    {"lower right, middle", 40, 30, JogZone::kLowerRight},
    {"lower right, flat edge outside", 50, 21, JogZone::kNone},
    {"lower right, steep edge inside", 22, 50, JogZone::kLowerRight},
    {"straight down: no button", 0, 50, JogZone::kNone},
    {"straight left: no button", -50, 0, JogZone::kNone},
};

TEST(JogZones, EachBoundaryFromInsideAndJustOutside) {
    for (const ZoneCase& c : kZoneCases) EXPECT_EQ(jogZoneAt(c.dx, c.dy), c.zone) << c.boundary;
}

TEST(JogIndicator, SweepsFromLowerLeftOverTheTopToLowerRight) {
    // Centre (65.5 + 30 cos a, 59.5 + 30 sin a), a = 135° + 2.7°·step; corner 3.5 up-left.
    EXPECT_EQ(jogIndicatorOrigin(0), CPoint(41, 77));    // 65.5 − 21.21 − 3.5, 59.5 + 21.21 − 3.5
    EXPECT_EQ(jogIndicatorOrigin(50), CPoint(62, 26));   // straight up: 59.5 − 30 − 3.5
    EXPECT_EQ(jogIndicatorOrigin(100), CPoint(83, 77));
    EXPECT_EQ(jogIndicatorOrigin(-5), jogIndicatorOrigin(0));
}

}  // namespace
