#pragma once
// The partitioned convolution's inner loop, acc ← acc + x · k, over packed spectra of 2M
// doubles (FftLayout.h; M ≥ 4) kept in the multiply-accumulate layout: each run of eight
// doubles — the four pairs (r0, i0) … (r3, i3) — is stored as (r0, r2, r1, r3, i0, i2, i1, i3),
// so that four real parts and their four imaginary parts each fill one AVX2 register and a
// complex product is four fused multiply-adds. The real bins 0 and M (entries 0 and 1 of the
// packed spectrum, here entries 0 and 4) are two real products.
//
// One routine per family: plain C++ (the reference), SSE2, AVX2 with fused multiply-adds and
// AVX-512, each where the processor has it. The families differ only in rounding (a fused
// multiply-add rounds once). They treat every run alike, as four complex bins, so that a
// spectrum can be taken a stretch of runs at a time; macSpectrum() puts the two real bins
// right. A sum whose next step is the inverse transform can leave its result in the packed
// layout instead (macSpectraPacked), saving the transform a separate pass to swap it back.

namespace dsp {

enum class MacFamily { Plain, Sse2, Avx2Fma, Avx512 };

// acc ← acc + Σ_j x[j]·k[j], j < terms, over the runs of 2·half doubles (half a multiple of
// 4), all as complex bins; each run's sum is kept in registers until all terms are in.
using MacSum = void (*)(double* acc, const double* const* x, const double* const* k, int terms, int half);
// Packed spectrum ↔ multiply-accumulate layout, in place (the rearrangement is its own inverse).
using MacLayoutSwap = void (*)(double* spectrum, int half);

// One family's routines: the sum, the same sum stored in the packed layout, and the layout
// swap in the same registers.
struct SpectrumMac {
    MacSum sum;
    MacSum sumPacked;
    MacLayoutSwap swap;
};

// The sum over whole spectra of 2·half doubles, the real bins 0 and M included; the result in
// the packed layout (the Nyquist bin then at entry 1) when `packed`.
template <bool packed = false>
void macSpectra(SpectrumMac mac, double* acc, const double* const* x, const double* const* k, int terms, int half) {
    double dc = acc[0], nyquist = acc[4];
    for (int j = 0; j < terms; ++j) dc += x[j][0] * k[j][0], nyquist += x[j][4] * k[j][4];
    (packed ? mac.sumPacked : mac.sum)(acc, x, k, terms, half);
    acc[0] = dc;
    acc[packed ? 1 : 4] = nyquist;
}
inline void macSpectraPacked(SpectrumMac mac, double* acc, const double* const* x, const double* const* k, int terms,
                             int half) {
    macSpectra<true>(mac, acc, x, k, terms, half);
}
inline void macSpectrum(SpectrumMac mac, double* acc, const double* x, const double* k, int half) {
    macSpectra(mac, acc, &x, &k, 1, half);
}

SpectrumMac spectrumMac(MacFamily family);
// The fastest family this machine runs.
MacFamily preferredMacFamily();

// The layout swap without vector registers wider than SSE2 (every family's numbers are the same).
void swapMacLayout(double* spectrum, int half);
// Where entry e of the packed spectrum is in the multiply-accumulate layout (and back).
constexpr int macLayoutIndex(int e) {
    constexpr int kWithinRun[8] = {0, 4, 2, 6, 1, 5, 3, 7};
    return e - e % 8 + kWithinRun[e % 8];
}

namespace mac {
// Each family's sum, with its result stored in the multiply-accumulate layout or the packed one.
template <bool packed>
void plain(double* acc, const double* const* x, const double* const* k, int terms, int half);
template <bool packed>
void sse2(double* acc, const double* const* x, const double* const* k, int terms, int half);
template <bool packed>
void avx2Fma(double* acc, const double* const* x, const double* const* k, int terms, int half);
template <bool packed>
void avx512(double* acc, const double* const* x, const double* const* k, int terms, int half);
void swapAvx2(double* spectrum, int half);
void swapAvx512(double* spectrum, int half);
}  // namespace mac

}  // namespace dsp
