#include "dsp/PartitionSpectra.h"

#include <algorithm>

#include "dsp/FftLayout.h"
#include "dsp/SpectrumMac.h"

namespace dsp {
namespace {

// Taps first .. last (inclusive) into a spectrum of 2M entries: tap first + t as sample t, at
// most M + 1 taps (the last one, if any, at entry 1). The scale for the inverse transform,
// 1/M on every bin and 1/(2M) on the two real ones, goes on the taps before the transform.
void partitionSpectrum(const double* kernel, int n, int first, int last, int m, const Fft& fft, double* out) {
    const double scale = 1.0 / m;
    const int count = last - first + 1;
    const int even = count < m ? count : m;
    std::fill(out, out + 2 * m, 0.0);
    if (first + even <= n) {
        const double* taps = kernel + 2 * first;
        for (int t = 0; t < even; ++t) out[2 * t] = taps[2 * t] * scale;
    } else {
        for (int t = 0; t < even; ++t) out[2 * t] = kernel[sampleEntry(n, first + t)] * scale;
    }
    if (count > m) out[1] = kernel[sampleEntry(n, first + m)] * scale;
    fft.forwardAny(out, m);
    out[0] *= 0.5;
    out[1] *= 0.5;
    swapMacLayout(out, m);
}

}  // namespace

void partitionKernel(const double* kernel, const PartitionPlan& plan, const Fft& fft, double* spectra) {
    const int n = plan.frameSize;
    const int headEnd = plan.hasTail() ? plan.tailLength() - 1 : n;  // the last tap of the head
    for (int p = 0; p < plan.headCount; ++p) {
        const int first = p * plan.hop;
        const int last = p + 1 == plan.headCount ? headEnd : first + plan.hop - 1;
        partitionSpectrum(kernel, n, first, last, plan.headHalf, fft, spectra + p * plan.headPartitionDoubles());
    }
    double* tail = spectra + plan.headDoubles();
    for (int q = 0; q < plan.tailCount; ++q) {
        const int first = (q + 1) * plan.tailLength();
        const int last = q + 1 == plan.tailCount ? n : first + plan.tailLength() - 1;
        partitionSpectrum(kernel, n, first, last, plan.tailHalf, fft, tail + q * plan.tailPartitionDoubles());
    }
}

}  // namespace dsp
