#pragma GCC optimize("fp-contract=off")
// GCC 12's AVX-512 intrinsics start some results from a deliberately undefined register, which
// its flow analysis then reports; nothing here reads such a value.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <immintrin.h>

#include <cfloat>
#include <cstdint>

#include "dsp/MidSideWide.h"
#include "dsp/SidePair.h"

namespace dsp {
namespace {

__m512d eight(const float* p) { return _mm512_cvtps_pd(_mm256_loadu_ps(p)); }
__m512d eight(const double* p) { return _mm512_loadu_pd(p); }

// |x| <= DBL_MAX is false for NaN and ±Inf: those lanes become +0.
__m512d finite(__m512d x) {
    return _mm512_maskz_mov_pd(_mm512_cmp_pd_mask(_mm512_abs_pd(x), _mm512_set1_pd(DBL_MAX), _CMP_LE_OQ), x);
}

__m512d flipSign(__m512d x) {
    return _mm512_castsi512_pd(_mm512_xor_si512(_mm512_castpd_si512(x), _mm512_set1_epi64(INT64_MIN)));
}

template <typename Sample>
void encode(const Sample* left, const Sample* right, int count, double m, double* pairs) {
    const __m512d mm = _mm512_set1_pd(m);
    const __m512i low = _mm512_set_epi64(11, 3, 10, 2, 9, 1, 8, 0), high = _mm512_set_epi64(15, 7, 14, 6, 13, 5, 12, 4);
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m512d l = finite(eight(left + i)), r = finite(eight(right + i));
        const __m512d a = _mm512_add_pd(l, _mm512_mul_pd(mm, r));
        const __m512d b = _mm512_add_pd(r, _mm512_mul_pd(mm, flipSign(l)));
        _mm512_storeu_pd(pairs + 2 * i, _mm512_permutex2var_pd(a, low, b));
        _mm512_storeu_pd(pairs + 2 * i + 8, _mm512_permutex2var_pd(a, high, b));
    }
    for (; i < count; ++i) {
        const double l = finiteOrZero(left[i]), r = finiteOrZero(right[i]);
        pairs[2 * i] = l + m * r;
        pairs[2 * i + 1] = r + m * -l;
    }
}

}  // namespace

void encodePairsAvx512(const float* left, const float* right, int count, double m, double* pairs) {
    encode(left, right, count, m, pairs);
}
void encodePairsAvx512(const double* left, const double* right, int count, double m, double* pairs) {
    encode(left, right, count, m, pairs);
}

}  // namespace dsp
