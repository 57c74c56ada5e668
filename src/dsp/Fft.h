#pragma once
// The four operations of fast convolution on one buffer of 2N doubles (FftLayout.h), for the
// frame sizes N = 4096, 8192, 16384 and 32768:
//   forward   half-interleaved time signal → packed spectrum, unnormalised;
//   inverse   packed spectrum → half-interleaved time signal,
//             x[t] = X[0] + (−1)^t X[N] + Σ_{k=1}^{N−1} (Re X[k] cos(πkt/N) − Im X[k] sin(πkt/N)),
//             that is without the factor 2 on bins 1..N − 1 and without a division;
//   scale     entries 0 and 1 by 1/(2N), every other entry by 1/N;
//   multiply  data ← data · kernel: entries 0 and 1 as two real gains, every further pair as a
//             complex number;
// So inverse(multiply(forward(x), scale(forward(k)))) is the 2N-point circular convolution of
// x and k.
//
// Each operation exists once per size as a fixed-size routine, in families that compute the
// same numbers: plain C++, SSE2, and AVX2 where the processor has it. An Fft object picks one
// family and dispatches on N; any N other than the four sizes does nothing. Buffers must be
// 16-byte aligned (32 for AVX2; AlignedBuffer gives 64). The 65536-double display transform
// is the forward transform for N = 32768.

#include "dsp/FftLayout.h"

namespace dsp {

enum class FftFamily { Scalar, Sse2, Avx2 };

// One family's routines, by size index (fftSizeIndex()).
struct FftRoutines {
    using Transform = void (*)(double* buffer);
    using Multiply = void (*)(double* data, const double* kernel);
    Transform forward[kFftSizeCount];
    Transform inverse[kFftSizeCount];
    Transform scale[kFftSizeCount];
    Multiply multiply[kFftSizeCount];
    // For every power-of-two M (anyFftSizeIndex()), the same transforms of 2M samples.
    Transform forwardAny[kAnyFftSizeCount];
    Transform inverseAny[kAnyFftSizeCount];
};

const FftRoutines& fftRoutines(FftFamily family);

// Whether this processor and operating system can run the family.
bool fftFamilyUsable(FftFamily family);
// The fastest usable family (decided once, from the CPU test).
FftFamily preferredFftFamily();
const char* fftFamilyName(FftFamily family);

class Fft {
public:
    // A family this machine cannot run falls back to the plain one.
    explicit Fft(FftFamily family = preferredFftFamily());

    FftFamily family() const { return family_; }

    void forward(double* buffer, int n) const {
        if (const int i = fftSizeIndex(n); i >= 0) routines_->forward[i](buffer);
    }
    void inverse(double* buffer, int n) const {
        if (const int i = fftSizeIndex(n); i >= 0) routines_->inverse[i](buffer);
    }
    void scale(double* buffer, int n) const {
        if (const int i = fftSizeIndex(n); i >= 0) routines_->scale[i](buffer);
    }
    void multiply(double* data, const double* kernel, int n) const {
        if (const int i = fftSizeIndex(n); i >= 0) routines_->multiply[i](data, kernel);
    }

    // The transforms of 2m samples for any power of two m up to kMaxFftSize (the partitions of
    // the partitioned convolution); any other m does nothing.
    void forwardAny(double* buffer, int m) const {
        if (const int i = anyFftSizeIndex(m); i >= 0) routines_->forwardAny[i](buffer);
    }
    void inverseAny(double* buffer, int m) const {
        if (const int i = anyFftSizeIndex(m); i >= 0) routines_->inverseAny[i](buffer);
    }

private:
    FftFamily family_;
    const FftRoutines* routines_;
};

}  // namespace dsp
