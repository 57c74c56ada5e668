#include "dsp/KernelDesigner.h"

#include <algorithm>
#include <cmath>

#include <emmintrin.h>

#include "dsp/PartitionSpectra.h"
#include "dsp/SidePair.h"
#include "dsp/SpectrumMac.h"

namespace dsp {
namespace {

constexpr double kHammingCentre = 0.54;
constexpr double kHammingSwing = 0.46;
// Added and taken away again after every section output, so that a decaying response
// ends in exact zeros instead of denormals.
constexpr double kDenormalGuard = 1e-18;

}  // namespace

KernelDesigner::KernelDesigner(FftFamily family)
    : fft_(family),
      sets_(kMaxFrameSize),
      work_(2 * kMaxFrameSize),
      workB_(2 * kMaxFrameSize),
      taps_{AlignedBuffer(2 * kMaxFrameSize), AlignedBuffer(2 * kMaxFrameSize)},
      multiplyScratch_(2 * kMaxFrameSize),
      window_(kMaxFrameSize / 2) {
    static_assert(2 * kMaxFrameSize >= KernelDisplay::kScratchDoubles, "the display transform runs in the taps' buffer");
}

KernelBuild KernelDesigner::buildKernels(const BiquadCoefficients (&sections)[kBandSlots], KernelFrame frame,
                                         double designRate, bool linPhase, platform::TimedLock& processLock,
                                         KernelCurves* curves, int lockWaitMs) {
    if (fftSizeIndex(frame.frameSize) < 0) return KernelBuild::Refused;
    const PartitionPlan plan = PartitionPlan::forFrame(frame.frameSize, frame.hop);

    platform::TimedLock::Guard process(processLock, lockWaitMs);
    if (!process) {
        pending_.store(true, std::memory_order_release);
        return KernelBuild::Skipped;
    }
    // From here on this build reflects everything the owner changed before calling it.
    pending_.store(false, std::memory_order_release);

    const bool measure = linPhase && curves != nullptr;
    buildInto(sets_.back(), sections, plan, designRate, linPhase, measure);
    sets_.publish();
    if (measure) *curves = measured_;
    return linPhase ? KernelBuild::Built : KernelBuild::Cleared;
}

void KernelDesigner::buildInto(KernelSet& set, const BiquadCoefficients (&sections)[kBandSlots],
                               const PartitionPlan& plan, double designRate, bool linPhase, bool measureCurves) {
    const int n = plan.frameSize;
    set.setPlan(plan);
    if (!linPhase) {
        for (int side = 0; side < kSides; ++side) std::fill(set.spectrum(side), set.spectrum(side) + plan.spectrumDoubles(), 0.0);
        return;
    }
    // Each side's response h into the work buffers, its windowed autocorrelation into the taps.
    double* response[kSides] = {work_.data(), workB_.data()};
    cascadeImpulseResponses(sections, n / 2, response[0], response[1]);
    useWindowFor(n);
    double* kernel[kSides] = {taps_[0].data(), taps_[1].data()};
    for (int side = 0; side < kSides; ++side) {
        autocorrelate(response[side], n);
        windowInto(kernel[side], response[side], n);
    }
    for (int side = 0; side < kSides; ++side) partitionKernel(kernel[side], plan, fft_, set.spectrum(side));
    // The taps are not needed any more: the display transform runs in their buffer.
    if (measureCurves)
        for (int side = 0; side < kSides; ++side)
            display_.measure(kernel[side], n, designRate, fft_, kernel[side], measured_.side[side]);
}

// A wavefront: at step k, band j of both sides (one register, side A low, side B high) takes
// sample k − j, the output band j − 1 gave at the step before. The eight bands of a step are
// independent, so the processor overlaps their recursions; each band still computes exactly
// what it computes sample by sample in series.
void cascadeImpulseResponses(const BiquadCoefficients (&sections)[kBandSlots], int half, double* sideA, double* sideB) {
    if (avx2Usable()) {
        cascadeImpulseResponsesAvx2(sections, half, kDenormalGuard, sideA, sideB);
        return;
    }
    struct Band {
        __m128d b0, b1, b2, a1, a2;
        __m128d x1 = _mm_setzero_pd(), x2 = _mm_setzero_pd(), y1 = _mm_setzero_pd(), y2 = _mm_setzero_pd();
    } band[kBandsPerSide];
    for (int j = 0; j < kBandsPerSide; ++j) {
        const BiquadCoefficients& a = sections[j];
        const BiquadCoefficients& b = sections[kBandsPerSide + j];
        band[j].b0 = _mm_set_pd(b.b0, a.b0);
        band[j].b1 = _mm_set_pd(b.b1, a.b1);
        band[j].b2 = _mm_set_pd(b.b2, a.b2);
        band[j].a1 = _mm_set_pd(b.a1, a.a1);
        band[j].a2 = _mm_set_pd(b.a2, a.a2);
    }
    const __m128d guard = _mm_set1_pd(kDenormalGuard);
    const int last = kBandsPerSide - 1;
    for (int k = 0; k <= half + last; ++k) {
        for (int j = last; j >= 0; --j) {
            Band& s = band[j];
            const __m128d x = j > 0 ? band[j - 1].y1 : _mm_set1_pd(k == 0 ? 1.0 : 0.0);
            __m128d y = _mm_add_pd(_mm_mul_pd(s.b0, x), _mm_mul_pd(s.b1, s.x1));
            y = _mm_add_pd(y, _mm_mul_pd(s.b2, s.x2));
            y = _mm_sub_pd(y, _mm_mul_pd(s.a1, s.y1));
            y = _mm_sub_pd(y, _mm_mul_pd(s.a2, s.y2));
            y = _mm_sub_pd(_mm_add_pd(y, guard), guard);
            s.x2 = s.x1;
            s.x1 = x;
            s.y2 = s.y1;
            s.y1 = y;
        }
        if (const int t = k - last; t >= 0) {
            _mm_storeu_pd(sideA + 2 * t, _mm_unpacklo_pd(band[last].y1, _mm_setzero_pd()));
            _mm_storeu_pd(sideB + 2 * t, _mm_unpackhi_pd(band[last].y1, _mm_setzero_pd()));
        }
    }
}

// h (N/2 + 1 samples at entries 2k) ← its circular autocorrelation over N samples, the inverse
// transform of |H|², at the entries of the layout of N samples (sampleEntry(N/2, t)). The lags
// reach ±N/2 only, so the one pair that meets when N samples wrap round is the last lag: N/2
// and −N/2, equal, fall on the same sample, which therefore holds twice r[N/2].
void KernelDesigner::autocorrelate(double* h, int n) {
    const int m = n / 2;
    h[1] = h[2 * m];  // sample N/2 into its place among N samples
    h[2 * m] = 0.0;
    fft_.forwardAny(h, m);
    h[0] *= h[0];
    h[1] *= h[1];
    for (int e = 2; e < 2 * m; e += 2) {
        h[e] = h[e] * h[e] + h[e + 1] * h[e + 1];
        h[e + 1] = 0.0;
    }
    const double dc = 1.0 / (2.0 * m), bins = 1.0 / m;
    h[0] *= dc;
    h[1] *= dc;
    for (int e = 2; e < 2 * m; e += 2) h[e] *= bins;
    fft_.inverseAny(h, m);
}

// The kernel g[n] = r[|n − N/2|]·w(n), n = 0..N, centred on the autocorrelation's peak: the
// rising half of the window on samples 0..N/2 − 1, mirrored onto N..N/2 + 1 (so the taps are
// exactly symmetric), sample N/2 with weight 1. Every other sample of the 2N is zero: samples
// 0..N − 1 fill the even entries, sample N is entry 1, and each pass writes the odd entry
// beside the even one, so no separate pass clears the buffer.
void KernelDesigner::windowInto(double* kernel, const double* r, int n) {
    const double* w = window_.data();
    const int half = n / 2;
    const double edge = r[1] / 2.0 * w[0];  // lag N/2, counted twice (see autocorrelate)
    kernel[0] = edge;
    kernel[1] = edge;
    for (int k = 1; k < half; ++k) {
        const double g = r[2 * (half - k)] * w[k];
        kernel[2 * k] = g;
        kernel[2 * k + 1] = 0.0;
        kernel[2 * (n - k)] = g;
        kernel[2 * (n - k) + 1] = 0.0;
    }
    kernel[2 * half] = r[0];
    kernel[2 * half + 1] = 0.0;
}

void KernelDesigner::useWindowFor(int n) {
    if (windowSize_ == n) return;
    const double pi = 3.14159265358979323846;
    for (int k = 0; k < n / 2; ++k) window_[k] = kHammingCentre - kHammingSwing * std::cos(2.0 * pi * k / n);
    windowSize_ = n;
}

bool KernelDesigner::multiplyByNewest(double* frameA, double* frameB, int frameSize) {
    const KernelSet& set = sets_.acquire();
    if (set.frameSize() != frameSize || set.plan().headCount != 1) return false;
    const SpectrumMac mac = spectrumMac(preferredMacFamily());
    double* frames[kSides] = {frameA, frameB};
    for (int side = 0; side < kSides; ++side) {
        double* spectrum = multiplyScratch_.data();
        std::copy(frames[side], frames[side] + 2 * frameSize, spectrum);
        std::fill(frames[side], frames[side] + 2 * frameSize, 0.0);
        mac.swap(spectrum, frameSize);
        macSpectrum(mac, frames[side], spectrum, set.spectrum(side), frameSize);
        mac.swap(frames[side], frameSize);
    }
    return true;
}

}  // namespace dsp
