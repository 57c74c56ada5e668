#pragma once
// The partitioned convolution's inner loop, acc ← acc + x · k, over packed spectra of 2M
// doubles (FftLayout.h; M ≥ 4) kept in the multiply-accumulate layout: each run of eight
// doubles — the four pairs (r0, i0) … (r3, i3) — is stored as (r0, r2, r1, r3, i0, i2, i1, i3),
// so that four real parts and their four imaginary parts each fill one AVX2 register and a
// complex product is four fused multiply-adds. The real bins 0 and M (entries 0 and 1 of the
// packed spectrum, here entries 0 and 4) are two real products.
//
// One routine per family: plain C++ (the reference), SSE2, and AVX2 with fused multiply-adds
// where the processor has them. The families differ only in rounding (a fused multiply-add
// rounds once).

namespace dsp {

enum class MacFamily { Plain, Sse2, Avx2Fma };

using SpectrumMac = void (*)(double* acc, const double* x, const double* k, int half);

SpectrumMac spectrumMac(MacFamily family);
// The fastest family this machine runs.
MacFamily preferredMacFamily();

// Packed spectrum ↔ multiply-accumulate layout, in place (the rearrangement is its own inverse).
void swapMacLayout(double* spectrum, int half);
// Where entry e of the packed spectrum is in the multiply-accumulate layout (and back).
constexpr int macLayoutIndex(int e) {
    constexpr int kWithinRun[8] = {0, 4, 2, 6, 1, 5, 3, 7};
    return e - e % 8 + kWithinRun[e % 8];
}

namespace mac {
void plain(double* acc, const double* x, const double* k, int half);
void sse2(double* acc, const double* x, const double* k, int half);
void avx2Fma(double* acc, const double* x, const double* k, int half);
}  // namespace mac

}  // namespace dsp
