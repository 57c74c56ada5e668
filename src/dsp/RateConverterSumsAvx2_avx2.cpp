// Two pairs per 256-bit register: taps m and m + 1 of both sides. Register s01 gathers the
// partial sums of m ≡ 0 and m ≡ 1 (mod 4), s23 those of m ≡ 2 and 3, so that every lane adds
// exactly the terms, in the order, of one of the pair routine's four partial sums. No fused
// multiply-add (this file may use FMA; the compiler must not fuse on its own either).

#pragma GCC optimize("fp-contract=off")

#include <immintrin.h>

#include "dsp/RateConverterSums.h"

namespace dsp::rate_sums {
namespace {

inline __m256d pairsAt(const double* p, int m) { return _mm256_loadu_pd(p + 2 * m); }

// The same from two 16-byte loads: for pairs a ring has just been given. A 32-byte load that
// overlaps a 16-byte store still in flight would wait for it to reach the cache; 16-byte loads
// take their data straight from the store.
inline __m256d freshPairsAt(const double* p, int m) {
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_loadu_pd(p + 2 * m)), _mm_loadu_pd(p + 2 * m + 2), 1);
}

// (s0 + s1) + (s2 + s3).
inline __m128d total(__m256d s01, __m256d s23) {
    const __m128d a = _mm_add_pd(_mm256_castpd256_pd128(s01), _mm256_extractf128_pd(s01, 1));
    const __m128d b = _mm_add_pd(_mm256_castpd256_pd128(s23), _mm256_extractf128_pd(s23, 1));
    return _mm_add_pd(a, b);
}

}  // namespace

template <int Count, int Sums>
void foldedSumsAvx2(const double* const (&c)[Sums], const double* const (&lo)[Sums], const double* const (&hi)[Sums],
                    __m128d (&out)[Sums]) {
    static_assert(Count % 4 == 0);
    __m256d s01[Sums], s23[Sums];
    for (int k = 0; k < Sums; ++k) s01[k] = s23[k] = _mm256_setzero_pd();
    // The newest pairs open the mirror images (hi); the older half (lo) is long settled.
    for (int m = 0; m < Count; m += 4)
        for (int k = 0; k < Sums; ++k) {
            const __m256d hi01 = m == 0 ? freshPairsAt(hi[k], m) : pairsAt(hi[k], m);
            const __m256d hi23 = m == 0 ? freshPairsAt(hi[k], m + 2) : pairsAt(hi[k], m + 2);
            s01[k] = _mm256_add_pd(s01[k], _mm256_mul_pd(pairsAt(c[k], m), _mm256_add_pd(pairsAt(lo[k], m), hi01)));
            s23[k] = _mm256_add_pd(s23[k], _mm256_mul_pd(pairsAt(c[k], m + 2), _mm256_add_pd(pairsAt(lo[k], m + 2), hi23)));
        }
    for (int k = 0; k < Sums; ++k) out[k] = total(s01[k], s23[k]);
}

template <int Count, size_t Sums>
void sumsAvx2(const double* const (&c)[Sums], const double* w, __m128d (&out)[Sums]) {
    static_assert(Count % 4 == 0);
    __m256d s01[Sums], s23[Sums];
    for (size_t k = 0; k < Sums; ++k) s01[k] = s23[k] = _mm256_setzero_pd();
    // The newest pairs close the window.
    for (int q = 0; q < Count; q += 4) {
        const bool fresh = q + 4 == Count;
        const __m256d w01 = fresh ? freshPairsAt(w, q) : pairsAt(w, q);
        const __m256d w23 = fresh ? freshPairsAt(w, q + 2) : pairsAt(w, q + 2);
        for (size_t k = 0; k < Sums; ++k) {
            s01[k] = _mm256_add_pd(s01[k], _mm256_mul_pd(pairsAt(c[k], q), w01));
            s23[k] = _mm256_add_pd(s23[k], _mm256_mul_pd(pairsAt(c[k], q + 2), w23));
        }
    }
    for (size_t k = 0; k < Sums; ++k) out[k] = total(s01[k], s23[k]);
}

// The half-band filters (one sum of 32 folded pairs), the quarter-band decimator (three of 32)
// and the quarter-band interpolator (three phases of 64).
template void foldedSumsAvx2<32, 1>(const double* const (&)[1], const double* const (&)[1], const double* const (&)[1],
                                    __m128d (&)[1]);
template void foldedSumsAvx2<32, 3>(const double* const (&)[3], const double* const (&)[3], const double* const (&)[3],
                                    __m128d (&)[3]);
template void sumsAvx2<64, 3>(const double* const (&)[3], const double*, __m128d (&)[3]);

}  // namespace dsp::rate_sums
