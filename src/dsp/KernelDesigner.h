#pragma once
// Turns the sixteen band sections into the two linear-phase kernels of the equalizer (one per
// side) and hands them to the audio path as kernel spectra, ready for fast convolution.
//
// Per side the eight sections run once, forwards and backwards, at design time: the impulse
// response h of the cascade (N/2 + 1 samples) is correlated with itself, which cancels the
// phase and squares the magnitude (|H|², the response the band curves show), and the
// autocorrelation is shaped by a Hamming window centred on its peak:
//   g[n] = c[n]·(0.54 − 0.46·cos(2πn/N)),  c[n] = Σ_k h[k]·h[k + n − N/2],  n = 0..N,
// N + 1 taps, symmetric about N/2, so the filter delays by exactly N/2 samples. The
// correlation is the inverse transform of |H|² over N samples (one transform each way per
// side; of its lags only ±N/2 meet, and they are equal). The kernel
// is then cut into the partitions the audio path's convolution uses (PartitionPlan.h), each
// transformed and scaled: the kernel spectra.
//
// Buffers (allocated once, for the largest N; nothing is allocated by a build): three kernel
// sets (KernelSetExchange.h) of which a build fills the one that is neither the newest nor the
// one the audio thread holds; the time-domain kernels and the two sides' work buffers; the
// Hamming half window (recomputed when N changes). The display transform runs in the
// time-domain kernels' buffers once they have been cut into partitions.
//
// Threads. buildKernels() takes the owner's process lock for the whole build: two builds
// never overlap, and the sets, work buffers, window and scratch that a build touches are only
// touched under it. A finished set is published without a lock; the audio thread picks the
// newest one at its next hop and never waits for a build. A process-lock wait that runs out
// skips the build without touching anything and leaves rebuildPending() set: the owner repeats
// the build at its next chance.

#include <atomic>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/Fft.h"
#include "dsp/KernelDisplay.h"
#include "dsp/KernelSetExchange.h"
#include "dsp/PartitionPlan.h"
#include "platform/TimedLock.h"

namespace dsp {

// The responses of both sides' cascades (slots 0..7 side A, 8..15 side B, band 1 first) to a
// unit impulse, samples k = 0..half: sample k goes to entry 2k of sideA and sideB (the
// half-interleaved layout) and zero to entry 2k + 1, so entries 0..2·half + 1 are all set. The two sides run side by side: their recursions are
// independent, so the processor overlaps them.
void cascadeImpulseResponses(const BiquadCoefficients (&sections)[kBandSlots], int half, double* sideA, double* sideB);
// The same on 256-bit registers, with the same numbers; only where AVX2 is usable. `guard`
// is the value added and taken away after every section output.
void cascadeImpulseResponsesAvx2(const BiquadCoefficients (&sections)[kBandSlots], int half, double guard,
                                 double* sideA, double* sideB);

// The total response of each side, as measured from the kernels.
struct KernelCurves {
    Curve side[kSides];
};

// The frame the kernels are built for: N, and the hop in which the convolution takes its input
// (the partitions follow from both, PartitionPlan::forFrame). N alone means a hop of N: one
// partition, the spectrum of the whole kernel.
struct KernelFrame {
    KernelFrame(int n) : frameSize(n), hop(n) {}  // NOLINT: a bare N is the one-partition frame
    KernelFrame(int n, int h) : frameSize(n), hop(h) {}
    int frameSize;
    int hop;
};

enum class KernelBuild {
    Built,    // new kernels are active; with LinPhase on, the curves were measured
    Cleared,  // LinPhase off: cleared kernels are active; no curves (the totals are the sums
              // of the band curves)
    Skipped,  // the process-lock wait ran out: nothing changed; rebuildPending() is set
    Refused,  // the frame size is not one of the four: nothing changed
};

class KernelDesigner {
public:
    static constexpr int kMaxFrameSize = kMaxFftSize;

    // Allocates every buffer. `family` picks the transforms (the plain one where the machine
    // cannot run it).
    explicit KernelDesigner(FftFamily family = preferredFftFamily());
    KernelDesigner(const KernelDesigner&) = delete;
    KernelDesigner& operator=(const KernelDesigner&) = delete;

    // Builds both sides' kernels from the sections (slots 0..7 side A, 8..15 side B, band 1
    // first), for frame size N (4096, 8192, 16384 or 32768; any other N builds nothing) at
    // designRate, cuts them into the partitions of the frame's hop, and publishes them. `curves`, when given, receives the measured totals
    // (only when the result is Built with linPhase on). lockWaitMs bounds the process-lock wait.
    KernelBuild buildKernels(const BiquadCoefficients (&sections)[kBandSlots], KernelFrame frame, double designRate,
                             bool linPhase, platform::TimedLock& processLock, KernelCurves* curves = nullptr,
                             int lockWaitMs = platform::TimedLock::kDefaultWaitMs);

    // A build was skipped and no build has started since (a build clears the flag when it
    // gets the process lock: it reflects everything the owner changed before calling it).
    bool rebuildPending() const { return pending_.load(std::memory_order_acquire); }

    // Frame size of the newest published kernels (any thread; 0 before the first build).
    int activeFrameSize() const { return sets_.newestFrameSize(); }

    // ---- The audio thread's side -------------------------------------------------------------
    // The newest complete set, held until the next call (the reader's side of the exchange).
    const KernelSet& acquireNewest() { return sets_.acquire(); }
    bool newerWaiting() const { return sets_.newerWaiting(); }
    // Takes the newest set and multiplies each side's frame of 2N entries by that side's
    // whole-kernel spectrum. False (frames untouched) unless that set is one partition of
    // this frame size (built for a hop of N).
    bool multiplyByNewest(double* frameA, double* frameB, int frameSize);

    const Fft& fft() const { return fft_; }

private:
    void buildInto(KernelSet& set, const BiquadCoefficients (&sections)[kBandSlots], const PartitionPlan& plan,
                   double designRate, bool linPhase, bool measureCurves);
    void autocorrelate(double* h, int n);
    void windowInto(double* kernel, const double* r, int n);
    void useWindowFor(int n);

    Fft fft_;
    KernelDisplay display_;

    KernelSetExchange sets_;
    AlignedBuffer work_;
    AlignedBuffer workB_;
    AlignedBuffer taps_[kSides];  // the time-domain kernels, 2N entries; then the display transform
    AlignedBuffer multiplyScratch_;  // the reader's, for multiplyByNewest()
    AlignedBuffer window_;
    int windowSize_ = 0;  // the N the half window was computed for
    KernelCurves measured_{};

    std::atomic<bool> pending_{false};
};

}  // namespace dsp
