// The AVX2 family of the spectrum multiply-accumulate: four bins per run, each complex product
// as four fused multiply-adds into the accumulators.

#include <immintrin.h>

#include "dsp/SpectrumMac.h"

namespace dsp::mac {

template <bool packed>
void avx2Fma(double* acc, const double* const* x, const double* const* k, int terms, int half) {
    for (int run = 0; run < 2 * half; run += 8) {
        __m256d re = _mm256_load_pd(acc + run), im = _mm256_load_pd(acc + run + 4);
        for (int t = 0; t < terms; ++t) {
            const __m256d xr = _mm256_load_pd(x[t] + run), xi = _mm256_load_pd(x[t] + run + 4);
            const __m256d kr = _mm256_load_pd(k[t] + run), ki = _mm256_load_pd(k[t] + run + 4);
            re = _mm256_fnmadd_pd(xi, ki, _mm256_fmadd_pd(xr, kr, re));
            im = _mm256_fmadd_pd(xr, ki, _mm256_fmadd_pd(xi, kr, im));
        }
        if (packed) {
            _mm256_store_pd(acc + run, _mm256_unpacklo_pd(re, im));
            _mm256_store_pd(acc + run + 4, _mm256_unpackhi_pd(re, im));
        } else {
            _mm256_store_pd(acc + run, re);
            _mm256_store_pd(acc + run + 4, im);
        }
    }
}
template void avx2Fma<false>(double*, const double* const*, const double* const*, int, int);
template void avx2Fma<true>(double*, const double* const*, const double* const*, int, int);

// Packed (r0, i0, r1, i1 | r2, i2, r3, i3) ↔ (r0, r2, r1, r3 | i0, i2, i1, i3): interleaving
// the two halves of a run one way is undoing it the other.
void swapAvx2(double* spectrum, int half) {
    for (int run = 0; run < 2 * half; run += 8) {
        const __m256d a = _mm256_loadu_pd(spectrum + run), b = _mm256_loadu_pd(spectrum + run + 4);
        _mm256_storeu_pd(spectrum + run, _mm256_unpacklo_pd(a, b));
        _mm256_storeu_pd(spectrum + run + 4, _mm256_unpackhi_pd(a, b));
    }
}

}  // namespace dsp::mac
