#include "dsp/KernelDisplay.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace dsp {

KernelDisplay::KernelDisplay() {
    constexpr int bins = 2 * kTransformSize;  // the transform's 65536 samples
    for (int r = 0; r < kRateCount; ++r) {
        for (int i = 0; i < kPlotPoints; ++i) {
            const double x = plotFrequency(i) * bins / kRates[r];
            const int low = static_cast<int>(std::floor(x));
            // The grid (20 Hz .. 19.7 kHz) stays well inside bins 1 .. 32767 at these rates;
            // the clamp only keeps the positions valid.
            const int lowBin = std::clamp(low, 1, kTransformSize - 2);
            tables_[r][i] = {2 * spectrumPairOfBin(kTransformSize, lowBin),
                             2 * spectrumPairOfBin(kTransformSize, lowBin + 1), x - low};
        }
    }
}

int KernelDisplay::rateIndexFor(double designRate) {
    for (int r = 1; r < kRateCount; ++r)
        if (designRate == kRates[r]) return r;
    return 0;
}

void KernelDisplay::measure(const double* kernel, int n, double designRate, const Fft& fft, double* scratch,
                            Curve& curve) const {
    // The same taps in the display transform's layout: samples below N keep their even
    // entries; sample N moves from entry 1 (sample N of 2N) to entry 2N (sample N of 65536).
    if (scratch != kernel) std::memcpy(scratch, kernel, sizeof(double) * 2 * static_cast<size_t>(n));
    std::fill(scratch + 2 * n, scratch + kScratchDoubles, 0.0);
    if (n < kTransformSize) {
        scratch[2 * n] = scratch[1];
        scratch[1] = 0.0;
    }
    fft.forward(scratch, kTransformSize);

    const Bracket* table = tables_[rateIndexFor(designRate)];
    for (int i = 0; i < kPlotPoints; ++i) {
        const Bracket& b = table[i];
        const double low = scratch[b.lowEntry] * scratch[b.lowEntry] + scratch[b.lowEntry + 1] * scratch[b.lowEntry + 1];
        const double high =
            scratch[b.highEntry] * scratch[b.highEntry] + scratch[b.highEntry + 1] * scratch[b.highEntry + 1];
        // Power rounded to float, its logarithm (taken in double) rounded to float, the factor
        // in float: the same precision steps as the band curves, so the two kinds of curve
        // agree where they should.
        const float power = static_cast<float>(low * (1.0 - b.fraction) + high * b.fraction);
        curve[i] = 10.0f * static_cast<float>(std::log10(static_cast<double>(power)));
    }
}

}  // namespace dsp
