// Both sides' cascade impulse responses on 256-bit registers: register r holds bands r and
// r + 4 of both sides (A, B, A, B), so a wavefront step is four registers instead of eight.
// Band r takes band r − 1's output of the step before, which is register r − 1 as it stands;
// band 0 takes the impulse and band 4 takes band 3's, the low half of register 3 before this
// step. No fused multiply-add: every product is rounded before it is added, as in the pair
// routine, so both give the same numbers.

#pragma GCC optimize("fp-contract=off")

#include <immintrin.h>

#include "dsp/KernelDesigner.h"

namespace dsp {

void cascadeImpulseResponsesAvx2(const BiquadCoefficients (&sections)[kBandSlots], int half, double guardValue,
                                 double* sideA, double* sideB) {
    constexpr int kRegisters = kBandsPerSide / 2;
    struct Bands {
        __m256d b0, b1, b2, a1, a2;
        __m256d x1 = _mm256_setzero_pd(), x2 = _mm256_setzero_pd(), y1 = _mm256_setzero_pd(),
                y2 = _mm256_setzero_pd();
    } reg[kRegisters];
    for (int r = 0; r < kRegisters; ++r) {
        const BiquadCoefficients& lowA = sections[r];
        const BiquadCoefficients& lowB = sections[kBandsPerSide + r];
        const BiquadCoefficients& highA = sections[r + kRegisters];
        const BiquadCoefficients& highB = sections[kBandsPerSide + r + kRegisters];
        reg[r].b0 = _mm256_set_pd(highB.b0, highA.b0, lowB.b0, lowA.b0);
        reg[r].b1 = _mm256_set_pd(highB.b1, highA.b1, lowB.b1, lowA.b1);
        reg[r].b2 = _mm256_set_pd(highB.b2, highA.b2, lowB.b2, lowA.b2);
        reg[r].a1 = _mm256_set_pd(highB.a1, highA.a1, lowB.a1, lowA.a1);
        reg[r].a2 = _mm256_set_pd(highB.a2, highA.a2, lowB.a2, lowA.a2);
    }
    const __m256d guard = _mm256_set1_pd(guardValue);
    const int last = kBandsPerSide - 1;
    for (int k = 0; k <= half + last; ++k) {
        const __m128d impulse = _mm_set1_pd(k == 0 ? 1.0 : 0.0);
        const __m256d first = _mm256_insertf128_pd(_mm256_castpd128_pd256(impulse),
                                                   _mm256_castpd256_pd128(reg[kRegisters - 1].y1), 1);
        for (int r = kRegisters - 1; r >= 0; --r) {
            Bands& s = reg[r];
            const __m256d x = r > 0 ? reg[r - 1].y1 : first;
            __m256d y = _mm256_add_pd(_mm256_mul_pd(s.b0, x), _mm256_mul_pd(s.b1, s.x1));
            y = _mm256_add_pd(y, _mm256_mul_pd(s.b2, s.x2));
            y = _mm256_sub_pd(y, _mm256_mul_pd(s.a1, s.y1));
            y = _mm256_sub_pd(y, _mm256_mul_pd(s.a2, s.y2));
            y = _mm256_sub_pd(_mm256_add_pd(y, guard), guard);
            s.x2 = s.x1;
            s.x1 = x;
            s.y2 = s.y1;
            s.y1 = y;
        }
        if (const int t = k - last; t >= 0) {
            const __m128d out = _mm256_extractf128_pd(reg[kRegisters - 1].y1, 1);
            _mm_storeu_pd(sideA + 2 * t, _mm_unpacklo_pd(out, _mm_setzero_pd()));
            _mm_storeu_pd(sideB + 2 * t, _mm_unpackhi_pd(out, _mm_setzero_pd()));
        }
    }
}

}  // namespace dsp
