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
// correlation runs as a product of spectra: h forwards in one buffer, h reversed in the work
// buffer, both transformed, multiplied, transformed back. The kernel is then transformed and
// scaled once more (its "kernel spectrum"), so that the audio path's convolution of a frame
// is forward, multiply, inverse.
//
// Buffers (allocated once, for the largest N; nothing is allocated by a build): two kernel
// buffers per side, of which one is active (the audio path multiplies with it) and the other
// the spare that the next build writes; for the SIMD families also the two sides'
// spectra interleaved entry by entry (4N doubles, double-buffered the same way), which
// multiplyBoth() reads; the work buffer; the Hamming half window (recomputed when N changes);
// the 65536-double scratch of the display transform.
//
// Threads and locks. buildKernels() takes the owner's process lock for the whole build (two
// builds never overlap, and the spares, work buffers, window and scratch are only touched
// under it) and the owner's engine lock only to make the spares active. The audio path
// multiplies under the engine lock. So a block is never convolved with a half-written or
// half-swapped pair. A wait that runs out skips the build without touching anything the
// lock guards and leaves rebuildPending() set: the owner repeats the build at its next
// chance.

#include <atomic>

#include "dsp/AlignedBuffer.h"
#include "dsp/EqTypes.h"
#include "dsp/Fft.h"
#include "dsp/KernelDisplay.h"
#include "platform/TimedLock.h"

namespace dsp {

// The responses of both sides' cascades (slots 0..7 side A, 8..15 side B, band 1 first) to a
// unit impulse, samples k = 0..half: sample k goes to entry 2k of sideA and sideB (the
// half-interleaved layout) and to entry 2(half − k) of sideAReversed. The two sides run side
// by side: their recursions are independent, so the processor overlaps them.
void cascadeImpulseResponses(const BiquadCoefficients (&sections)[kBandSlots], int half, double* sideA, double* sideB,
                             double* sideAReversed);

// The total response of each side, as measured from the kernels.
struct KernelCurves {
    Curve side[kSides];
};

enum class KernelBuild {
    Built,    // new kernels are active; with LinPhase on, the curves were measured
    Cleared,  // LinPhase off: cleared kernels are active; no curves (the totals are the sums
              // of the band curves)
    Skipped,  // a lock wait ran out: nothing changed; rebuildPending() is set
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
    // designRate, and makes them active. `curves`, when given, receives the measured totals
    // (only when the result is Built with linPhase on). lockWaitMs bounds each lock wait.
    KernelBuild buildKernels(const BiquadCoefficients (&sections)[kBandSlots], int frameSize, double designRate,
                             bool linPhase, platform::TimedLock& processLock, platform::TimedLock& engineLock,
                             KernelCurves* curves = nullptr, int lockWaitMs = platform::TimedLock::kDefaultWaitMs);

    // A build was skipped and no build has started since (a build clears the flag when it
    // gets the process lock: it reflects everything the owner changed before calling it).
    bool rebuildPending() const { return pending_.load(std::memory_order_acquire); }

    // ---- The audio path's side. Call with the engine lock held. -----------------------------
    // frame ← frame · active kernel spectrum of the side. False (frame untouched) when no
    // kernel of this frame size is active: right after construction, or for the block or two
    // that may still run at the previous N after a reconfiguration.
    bool multiplyByActiveKernel(int side, double* frame, int frameSize) const;
    // Both sides in one pass (the interleaved spectra where the family keeps them).
    bool multiplyBothSides(double* frameA, double* frameB, int frameSize) const;
    int activeFrameSize() const { return activeFrameSize_; }
    // The active kernel spectrum of a side (2N doubles, packed spectrum).
    const double* activeKernel(int side) const { return active_[side]; }

    const Fft& fft() const { return fft_; }

private:
    void buildSpares(const BiquadCoefficients (&sections)[kBandSlots], int n, double designRate, bool linPhase,
                     bool measureCurves);
    void autocorrelate(double* kernel, int n);
    void applyWindow(double* kernel, int n);
    void useWindowFor(int n);

    Fft fft_;
    bool keepsInterleaved_;
    KernelDisplay display_;

    AlignedBuffer kernels_[kSides][2];
    AlignedBuffer interleaved_[2];
    AlignedBuffer work_;
    AlignedBuffer window_;
    AlignedBuffer displayScratch_;
    int windowSize_ = 0;  // the N the half window was computed for
    KernelCurves measured_{};

    // Swapped under the engine lock (and the process lock); the spare of a side is always the
    // buffer that is not active.
    double* active_[kSides];
    double* spare_[kSides];
    double* activeInterleaved_;
    double* spareInterleaved_;
    int activeFrameSize_ = 0;

    std::atomic<bool> pending_{false};
};

}  // namespace dsp
