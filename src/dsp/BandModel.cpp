#include "dsp/BandModel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "dsp/BandCurve.h"
#include "dsp/BandGrid.h"
#include "dsp/BandSectionDesign.h"
#include "platform/CpuFeatures.h"

namespace dsp {
namespace {

// The plot's half-height is 6·2^(2 − 3r) dB; the auto-zoom leaves this much room above a peak.
constexpr float kZoomHeadroom = 1.1f;
constexpr float kZoomBaseDb = 6.0f;

}  // namespace

BandModel::BandModel(bool useSse2) : useSse2_(useSse2) {
    bandGridTable(0);  // builds every rate class's table now rather than at the first curve
    designAllBands(kStartDesignRate);
    computeBandCurves();
    computeTotalCurves();
}

BandModel::BandModel() : BandModel(platform::cpuFeatures().usable(platform::kCpuSse2)) {}

void BandModel::designBand(int band, double designRate) {
    designRate_ = designRate;
    rateClass_ = rateClassFor(designRate);
    for (int side = 0; side < kSides; ++side) {
        const int slot = bandSlot(side, band);
        const BiquadCoefficients section =
            isSoloedOut(band) ? kIdentitySection : designBandSection(settings_[slot], designRate);
        coefficients_.store(slot, section);
        handoff_.publish(slot, section);
    }
}

void BandModel::designAllBands(double designRate) {
    for (int band = 0; band < kBandsPerSide; ++band) designBand(band, designRate);
}

void BandModel::computeBandCurves() {
    const BandGridTable& grid = bandGridTable(rateClass_);
    for (int slot = 0; slot < kBandSlots; ++slot) {
        if (useSse2_)
            computeBandCurveSse2(coefficients_.section(slot), grid, bandCurves_[slot]);
        else
            computeBandCurvePlain(coefficients_.section(slot), grid, bandCurves_[slot]);
    }
}

// A float sum over eight curves: the compiler vectorizes it as it is, so it has no separate
// SSE2 routine.
void BandModel::computeTotalCurves() {
    for (int side = 0; side < kSides; ++side) {
        Curve& total = totalCurves_[side];
        std::copy(std::begin(bandCurves_[bandSlot(side, 0)]), std::end(bandCurves_[bandSlot(side, 0)]), total);
        for (int band = 1; band < kBandsPerSide; ++band) {
            const Curve& curve = bandCurves_[bandSlot(side, band)];
            for (int i = 0; i < kPlotPoints; ++i) total[i] += curve[i];
        }
    }
}

void BandModel::setTotalCurve(int side, const Curve& curve) {
    std::memcpy(totalCurves_[side], curve, sizeof(Curve));
}

float BandModel::autoZoom() const {
    float peak = 0.0f;
    for (int side = 0; side < kSides; ++side) {
        for (int i = 0; i < kPlotPoints; ++i) {
            float total = 0.0f;
            float gainBandsTotal = 0.0f;
            for (int band = 0; band < kBandsPerSide; ++band) {
                const int slot = bandSlot(side, band);
                const float value = bandCurves_[slot][i];
                total += value;
                if (hasGain(settings_[slot].bandType)) {
                    peak = std::max(peak, std::fabs(value));
                    gainBandsTotal += value;
                }
            }
            peak = std::max(peak, total);
            peak = std::max(peak, std::fabs(gainBandsTotal));
        }
    }
    return plotRangeForPeak(peak);
}

// Solves 1.1·peak = 6·2^(2 − 3r) for r, each step rounded to single precision.
float BandModel::plotRangeForPeak(float peakDb) {
    const float scaled = kZoomHeadroom * peakDb / kZoomBaseDb;
    const float octaves = static_cast<float>(std::log2(static_cast<double>(scaled)));
    const float r = (octaves - 2.0f) / -3.0f;
    if (std::isnan(r) || r > 1.0f) return 1.0f;
    return std::max(r, 0.0f);
}

}  // namespace dsp
