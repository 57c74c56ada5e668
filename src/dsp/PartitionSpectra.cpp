#include "dsp/PartitionSpectra.h"

#include <algorithm>

#include "dsp/FftLayout.h"
#include "dsp/SpectrumMac.h"

namespace dsp {
namespace {

// Taps first .. last (inclusive) into a spectrum of 2M entries: tap first + t as sample t.
void partitionSpectrum(const double* kernel, int n, int first, int last, int m, const Fft& fft, double* out) {
    std::fill(out, out + 2 * m, 0.0);
    for (int t = 0; t <= last - first; ++t) out[sampleEntry(m, t)] = kernel[sampleEntry(n, first + t)];
    fft.forwardAny(out, m);
    const double dc = 1.0 / (2.0 * m), bins = 1.0 / m;
    out[0] *= dc;
    out[1] *= dc;
    for (int e = 2; e < 2 * m; ++e) out[e] *= bins;
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
