// The AVX-512 family of the spectrum multiply-accumulate: a whole run — four real parts and
// their four imaginary parts — in one register. Each term costs two fused multiply-adds into
// two sums, x·k = (xr·kr | xi·ki) and x·k' = (xr·ki | xi·kr) with k' the kernel's halves
// exchanged; the real part xr·kr − xi·ki and the imaginary part xr·ki + xi·kr are formed from
// them once per run, after all terms are in.

#include <immintrin.h>

#include "dsp/SpectrumMac.h"

namespace dsp::mac {
namespace {

constexpr int kExchangeHalves = 0x4E;  // 128-bit lanes 2, 3, 0, 1
constexpr int kLowHalves = 0x44;        // lanes 0, 1 of the first operand, then of the second
constexpr int kHighHalves = 0xEE;       // lanes 2, 3 of the first operand, then of the second

// The 128-bit lanes of a and b that `select` picks (the zero-masking form: the plain one reads an
// undefined register GCC warns about).
template <int select>
__m512d lanes(__m512d a, __m512d b) {
    return _mm512_maskz_shuffle_f64x2(0xFF, a, b, select);
}

// A run's entries 0, 4, 2, 6, 1, 5, 3, 7 (macLayoutIndex(), which is its own inverse: the same
// order takes the packed layout to the multiply-accumulate one); zero-masking as in lanes().
__m512d otherLayout(__m512d run) {
    return _mm512_maskz_permutexvar_pd(0xFF, _mm512_set_epi64(7, 3, 5, 1, 6, 2, 4, 0), run);
}

}  // namespace

template <bool packed>
void avx512(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    // (−1, −1, −1, −1, +1, +1, +1, +1): the real part subtracts xi·ki, the imaginary part adds xi·kr.
    const __m512d sign = _mm512_set_pd(1.0, 1.0, 1.0, 1.0, -1.0, -1.0, -1.0, -1.0);
    for (int run = 0; run < 2 * half; run += 8) {
        __m512d same = _mm512_setzero_pd(), crossed = _mm512_setzero_pd();
        for (int t = 0; t < terms; ++t) {
            const __m512d xv = _mm512_loadu_pd(x[t] + run), kv = _mm512_loadu_pd(k[t] + run);
            same = _mm512_fmadd_pd(xv, kv, same);
            crossed = _mm512_fmadd_pd(xv, lanes<kExchangeHalves>(kv, kv), crossed);
        }
        // (Σxr·kr | Σxr·ki) + sign · (Σxi·ki | Σxi·kr)
        const __m512d first = lanes<kLowHalves>(same, crossed);
        const __m512d second = lanes<kHighHalves>(same, crossed);
        const __m512d sum = _mm512_fmadd_pd(second, sign, _mm512_add_pd(first, _mm512_loadu_pd(acc + run)));
        _mm512_storeu_pd(acc + run, packed ? otherLayout(sum) : sum);
    }
}
template void avx512<false>(double*, const double* const*, const double* const*, int, int);
template void avx512<true>(double*, const double* const*, const double* const*, int, int);

void swapAvx512(double* spectrum, int half) {
    for (int run = 0; run < 2 * half; run += 8)
        _mm512_storeu_pd(spectrum + run, otherLayout(_mm512_loadu_pd(spectrum + run)));
}

}  // namespace dsp::mac
