#include "gui/plot/PlotGeometry.h"

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

}  // namespace plot
