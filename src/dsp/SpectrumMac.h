#pragma once
// The partitioned convolution's inner loop: acc ← acc + x · k over packed spectra of 2M
// doubles (FftLayout.h): entries 0 and 1 (the real bins 0 and M) as two real products, every
// further pair as a complex product. One routine per family: plain C++ (the reference),
// SSE2, and AVX2 with fused multiply-adds where the processor has them. The families differ
// only in rounding (a fused multiply-add rounds once).

namespace dsp {

enum class MacFamily { Plain, Sse2, Avx2Fma };

using SpectrumMac = void (*)(double* acc, const double* x, const double* k, int half);

SpectrumMac spectrumMac(MacFamily family);
// The fastest family this machine runs.
MacFamily preferredMacFamily();

namespace mac {
void plain(double* acc, const double* x, const double* k, int half);
void sse2(double* acc, const double* x, const double* k, int half);
void avx2Fma(double* acc, const double* x, const double* k, int half);
}  // namespace mac

}  // namespace dsp
