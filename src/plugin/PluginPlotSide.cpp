// The plug-in side of the response plot: the curves it draws, copied as plain floats so that the
// editor never sees the band model.

#include <cstring>

#include "gui/plot/PlotOwner.h"
#include "plugin/Plugin.h"

static_assert(dsp::kPlotPoints == plot::kCurvePoints && dsp::kSides == plot::kSides);

// The curves change under the design lock; the editor's draw does not wait for a redesign
// and keeps its previous curves instead.
bool Plugin::getPlotCurves(float* totals, float* bands) {
    EqualizerControl::DesignScope design(equalizer, 0);
    if (!design) return false;
    for (int side = 0; side < dsp::kSides; ++side) {
        std::memcpy(totals + side * dsp::kPlotPoints, bandModel.totalCurve(side), sizeof(dsp::Curve));
        for (int b = 0; b < params::kBands; ++b)
            std::memcpy(bands + (side * params::kBands + b) * dsp::kPlotPoints, bandModel.bandCurve(side, b),
                        sizeof(dsp::Curve));
    }
    return true;
}
