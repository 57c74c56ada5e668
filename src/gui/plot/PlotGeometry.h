#pragma once
// Where things sit on the response plot: the inner area, the log frequency axis (20 Hz at the
// left edge, 20 kHz at the right), the level axis of half-height R dB, and the hit test of the
// band handles. Everything here is plain arithmetic on the view's rectangle.

#include <cmath>

#include "gui/toolkit/CGeometry.h"

namespace plot {

constexpr int kBandCount = 8;
constexpr int kGridLines = 26;
// 30, 40 … 90, 100, 200 … 900, 1000 … 10000 Hz.
constexpr double kGridFrequencies[kGridLines] = {30,   40,   50,   60,   70,   80,   90,   100,  200,
                                                 300,  400,  500,  600,  700,  800,  900,  1000, 2000,
                                                 3000, 4000, 5000, 6000, 7000, 8000, 9000, 10000};
constexpr int kHandleReach = 10;      // pixels around a handle's centre that grab it
constexpr double kFixedScaleDb = 24;  // handles keep their height on a ±24 dB scale
constexpr double kFloatSlack = 1e-4;  // in pixels: far above float rounding, far below a pixel

// Half-height of the level axis in dB for the plot range value p (24 dB at 0, 3 dB at 1).
inline double rangeDb(double p) { return 6.0 * std::exp2(2.0 - 3.0 * p); }

struct PlotGeometry {
    int left, top, right, bottom;
    int yMid;  // the 0 dB line
    int h;     // half height
    int H;     // full height
    int W;     // inner width

    explicit PlotGeometry(const CRect& view)
        : left(static_cast<int>(view.left) + 40),
          top(static_cast<int>(view.top) + 16),
          right(static_cast<int>(view.right) - 25),
          bottom(static_cast<int>(view.bottom) - 1),
          yMid((top + bottom) / 2),
          h(yMid - top),
          H(bottom - top),
          W(right - left) {}

    // Pixels from the inner left edge for a normalized frequency (0 = 20 Hz, 1 = 20 kHz). A
    // value the plot itself sent for pixel k (k/W in single precision) maps back to k.
    int handleX(double v) const { return static_cast<int>(W * v + kFloatSlack); }
    int frequencyX(double hz) const { return left + static_cast<int>(W * std::log10(hz / 20.0) / 3.0); }
    double levelY(double dB, double R) const { return yMid - dB * h / R; }
    // A normalized gain (0.5 = 0 dB) as a height on the fixed ±24 dB scale.
    double fixedHandleY(double g) const { return yMid - (2.0 * g - 1.0) * h; }
    // That height redrawn on a level axis of half-height R.
    double drawnHandleY(double fixedY, double R) const { return yMid - (yMid - fixedY) * kFixedScaleDb / R; }
};

// What the hit test needs of a band.
struct HandleSpot {
    bool shown = false;
    double x = 0;  // from the inner left edge
    double y = 0;  // drawn height in frame pixels
};

// Drops the vertices of a polyline (x rising) that lie within reach of the straight line through
// their kept neighbours; answers how many are left at the start of points. Band curves are flat
// or gently bent over most of the plot, and every vertex costs stroking work.
int simplifyPolyline(CPoint* points, int count, double reach);

// The lowest-numbered shown band whose handle lies within reach of (x, y), or −1.
int hitHandle(const PlotGeometry& g, const HandleSpot (&spots)[kBandCount], double x, double y);

}  // namespace plot
