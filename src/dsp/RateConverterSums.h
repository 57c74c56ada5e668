#pragma once
// The rate converters' sums on 256-bit registers (RateConverterSumsAvx2_avx2.cpp), for the SSE2
// family where the machine has AVX2. Each takes and returns interleaved (A, B) pairs and adds
// in the pair routine's order: four partial sums by index modulo 4, (s0 + s1) + (s2 + s3),
// every product rounded before it is added. Several sums of one call run side by side, so
// that their additions overlap. Unaligned pointers are fine.

#include <emmintrin.h>

#include <cstddef>

namespace dsp::rate_sums {

// out[k] = Σ c[k][m]·(lo[k][m] + hi[k][m]) for m = 0..Count − 1, k = 0..Sums − 1.
template <int Count, int Sums>
void foldedSumsAvx2(const double* const (&c)[Sums], const double* const (&lo)[Sums], const double* const (&hi)[Sums],
                    __m128d (&out)[Sums]);

// out[k] = Σ c[k][q]·w[q] for q = 0..Count − 1, k = 0..Sums − 1.
template <int Count, size_t Sums>
void sumsAvx2(const double* const (&c)[Sums], const double* w, __m128d (&out)[Sums]);

}  // namespace dsp::rate_sums
