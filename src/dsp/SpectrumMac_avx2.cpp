// The AVX2 family of the spectrum multiply-accumulate: two bins per register, each complex
// product formed with one fused multiply-add/subtract.

#include <immintrin.h>

#include "dsp/SpectrumMac.h"

namespace dsp::mac {

void avx2Fma(double* acc, const double* x, const double* k, int half) {
    // Pair 0: the two real bins. Pair 1 (when M > 1) on its own, so that the loop below runs
    // over whole 32-byte pairs of bins.
    _mm_store_pd(acc, _mm_fmadd_pd(_mm_load_pd(x), _mm_load_pd(k), _mm_load_pd(acc)));
    if (half < 2) return;
    {
        const __m128d a = _mm_load_pd(x + 2), b = _mm_load_pd(k + 2);
        const __m128d re = _mm_unpacklo_pd(b, b), im = _mm_unpackhi_pd(b, b);
        const __m128d product = _mm_fmaddsub_pd(a, re, _mm_mul_pd(_mm_shuffle_pd(a, a, 1), im));
        _mm_store_pd(acc + 2, _mm_add_pd(_mm_load_pd(acc + 2), product));
    }
    for (int j = 4; j < 2 * half; j += 4) {
        const __m256d a = _mm256_load_pd(x + j), b = _mm256_load_pd(k + j);
        const __m256d re = _mm256_unpacklo_pd(b, b), im = _mm256_unpackhi_pd(b, b);
        const __m256d product = _mm256_fmaddsub_pd(a, re, _mm256_mul_pd(_mm256_permute_pd(a, 0b0101), im));
        _mm256_store_pd(acc + j, _mm256_add_pd(_mm256_load_pd(acc + j), product));
    }
}

}  // namespace dsp::mac
