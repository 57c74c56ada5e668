#include "gui/plot/PlotGeometry.h"

#include <algorithm>

namespace plot {

int hitHandle(const PlotGeometry& g, const HandleSpot (&spots)[kBandCount], double x, double y) {
    for (int band = 0; band < kBandCount; ++band) {
        const HandleSpot& s = spots[band];
        if (!s.shown) continue;
        const double dx = x - g.left - s.x;
        if (dx >= -kHandleReach && dx <= kHandleReach && y >= s.y - kHandleReach && y <= s.y + kHandleReach)
            return band;
    }
    return -1;
}

// Keeps the range of slopes from the last kept vertex that pass within reach of every point
// since; where a point leaves no slope, the one before it becomes a vertex.
int simplifyPolyline(CPoint* points, int count, double reach) {
    if (count < 3) return count;
    constexpr double kAny = 1e300;
    int kept = 1;
    CPoint anchor = points[0];
    double low = -kAny, high = kAny;
    for (int i = 1; i < count; ++i) {
        const CPoint p = points[i];
        const double slope = (p.y - anchor.y) / (p.x - anchor.x);
        if (slope < low || slope > high) {
            anchor = points[i - 1];
            points[kept++] = anchor;
            low = -kAny;
            high = kAny;
        }
        const double run = p.x - anchor.x;
        low = std::max(low, (p.y - reach - anchor.y) / run);
        high = std::min(high, (p.y + reach - anchor.y) / run);
    }
    points[kept++] = points[count - 1];
    return kept;
}

}  // namespace plot
