#include "dsp/KernelDesigner.h"

#include <algorithm>
#include <cmath>

#include "dsp/PartitionSpectra.h"
#include "dsp/SpectrumMac.h"

namespace dsp {
namespace {

constexpr double kHammingCentre = 0.54;
constexpr double kHammingSwing = 0.46;
// Added and taken away again after every section output, so that a decaying response
// ends in exact zeros instead of denormals.
constexpr double kDenormalGuard = 1e-18;

struct SectionState {
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
};

inline double runSection(const BiquadCoefficients& c, SectionState& s, double x) {
    double y = c.b0 * x + c.b1 * s.x1 + c.b2 * s.x2 - c.a1 * s.y1 - c.a2 * s.y2;
    y = (y + kDenormalGuard) - kDenormalGuard;
    s.x2 = s.x1;
    s.x1 = x;
    s.y2 = s.y1;
    s.y1 = y;
    return y;
}

}  // namespace

KernelDesigner::KernelDesigner(FftFamily family)
    : fft_(family),
      sets_(kMaxFrameSize),
      work_(2 * kMaxFrameSize),
      taps_{AlignedBuffer(2 * kMaxFrameSize), AlignedBuffer(2 * kMaxFrameSize)},
      multiplyScratch_(2 * kMaxFrameSize),
      window_(kMaxFrameSize / 2),
      displayScratch_(KernelDisplay::kScratchDoubles) {}

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
    const size_t entries = 2 * static_cast<size_t>(n);
    set.setPlan(plan);
    if (!linPhase) {
        for (int side = 0; side < kSides; ++side) std::fill(set.spectrum(side), set.spectrum(side) + plan.spectrumDoubles(), 0.0);
        return;
    }
    double* kernel[kSides] = {taps_[0].data(), taps_[1].data()};
    for (double* k : kernel) std::fill(k, k + entries, 0.0);

    // Side A's reversed response goes straight into the work buffer; side B's is copied
    // there once side A is done with it.
    std::fill(work_.data(), work_.data() + entries, 0.0);
    const int half = n / 2;
    cascadeImpulseResponses(sections, half, kernel[0], kernel[1], work_.data());
    autocorrelate(kernel[0], n);

    std::fill(work_.data(), work_.data() + entries, 0.0);
    for (int k = 0; k <= half; ++k) work_[2 * (half - k)] = kernel[1][2 * k];
    autocorrelate(kernel[1], n);

    useWindowFor(n);
    for (double* k : kernel) applyWindow(k, n);
    if (measureCurves)
        for (int side = 0; side < kSides; ++side)
            display_.measure(kernel[side], n, designRate, fft_, displayScratch_.data(), measured_.side[side]);
    for (int side = 0; side < kSides; ++side) partitionKernel(kernel[side], plan, fft_, set.spectrum(side));
}

void cascadeImpulseResponses(const BiquadCoefficients (&sections)[kBandSlots], int half, double* sideA, double* sideB,
                             double* sideAReversed) {
    SectionState state[kBandSlots] = {};
    for (int k = 0; k <= half; ++k) {
        double a = k == 0 ? 1.0 : 0.0;
        double b = a;
        for (int band = 0; band < kBandsPerSide; ++band) {
            a = runSection(sections[band], state[band], a);
            b = runSection(sections[kBandsPerSide + band], state[kBandsPerSide + band], b);
        }
        sideA[2 * k] = a;
        sideB[2 * k] = b;
        sideAReversed[2 * (half - k)] = a;
    }
}

// kernel (h forwards) ← h correlated with the work buffer's h reversed: c[n], n = 0..N, peak
// at N/2. N + 1 samples fit the 2N-sample circular product without wrapping round.
void KernelDesigner::autocorrelate(double* kernel, int n) {
    double* reversed = work_.data();
    fft_.forward(reversed, n);
    fft_.scale(reversed, n);
    fft_.forward(kernel, n);
    fft_.multiply(kernel, reversed, n);
    fft_.inverse(kernel, n);
}

// Samples 0..N/2 − 1 take the rising half of the window and are mirrored onto N..N/2 + 1
// (which also makes the taps exactly symmetric); sample N/2 keeps weight 1. Whatever rounding
// left in samples N + 1..2N − 1 is cleared: the kernel is exactly its N + 1 taps.
void KernelDesigner::applyWindow(double* kernel, int n) {
    const double* w = window_.data();
    const int half = n / 2;
    for (int k = 0; k < half; ++k) kernel[2 * k] *= w[k];
    for (int k = 1; k < half; ++k) kernel[2 * (n - k)] = kernel[2 * k];
    kernel[1] = kernel[0];
    for (int t = 1; t < n; ++t) kernel[2 * t + 1] = 0.0;
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
        swapMacLayout(spectrum, frameSize);
        mac(frames[side], spectrum, set.spectrum(side), frameSize);
        swapMacLayout(frames[side], frameSize);
    }
    return true;
}

}  // namespace dsp
