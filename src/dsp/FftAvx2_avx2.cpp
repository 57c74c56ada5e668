// The AVX2 family. The loops of the large blocks run on 256-bit registers holding two
// consecutive complex values (the butterflies t and t + 1); the small straight-line blocks run
// the SSE2 lane, which this file's instruction set encodes in the three-operand VEX form.
// No fused multiply-add: every product is rounded before it is added, exactly as in the other
// families, so all families give identical numbers. (The compiler would otherwise fuse the
// intrinsics' multiplications and additions on its own, since this file may use FMA.)

#pragma GCC optimize("fp-contract=off")

#include <immintrin.h>

#include "dsp/FftFamilies.h"
#include "dsp/FftSse2Lane.h"

namespace dsp::fft {
namespace {

struct Avx2Pair {
    using C = __m256d;
    static constexpr int kWidth = 2;

    static TYX_FFT_INLINE C signLow() { return _mm256_set_pd(0.0, -0.0, 0.0, -0.0); }
    static TYX_FFT_INLINE C swap(C a) { return _mm256_permute_pd(a, 0b0101); }

    static TYX_FFT_INLINE C load(const double* p) { return _mm256_loadu_pd(p); }
    static TYX_FFT_INLINE void store(double* p, C z) { _mm256_storeu_pd(p, z); }
    static TYX_FFT_INLINE C add(C a, C b) { return _mm256_add_pd(a, b); }
    static TYX_FFT_INLINE C sub(C a, C b) { return _mm256_sub_pd(a, b); }
    static TYX_FFT_INLINE C scale(C a, double s) { return _mm256_mul_pd(a, _mm256_set1_pd(s)); }
    static TYX_FFT_INLINE C timesMinusI(C a) { return _mm256_xor_pd(swap(a), _mm256_set_pd(-0.0, 0.0, -0.0, 0.0)); }
    static TYX_FFT_INLINE C timesI(C a) { return _mm256_xor_pd(swap(a), signLow()); }
    static TYX_FFT_INLINE C mul(C a, C b) {
        const C re = _mm256_unpacklo_pd(b, b), im = _mm256_unpackhi_pd(b, b);
        return _mm256_add_pd(_mm256_mul_pd(a, re), _mm256_xor_pd(_mm256_mul_pd(swap(a), im), signLow()));
    }
    static TYX_FFT_INLINE C rotate(C z, const double* w) {
        return _mm256_add_pd(_mm256_mul_pd(z, _mm256_load_pd(w)), _mm256_mul_pd(swap(z), _mm256_load_pd(w + 4)));
    }
    static TYX_FFT_INLINE C rotateConj(C z, const double* w) {
        return _mm256_sub_pd(_mm256_mul_pd(z, _mm256_load_pd(w)), _mm256_mul_pd(swap(z), _mm256_load_pd(w + 4)));
    }
    static TYX_FFT_INLINE void realSplit(double* lo, double* hi, const double* w) {
        const C p = load(lo), q = load(hi);
        const C first = _mm256_unpacklo_pd(p, q), second = _mm256_unpackhi_pd(p, q);
        store(lo, _mm256_add_pd(first, second));
        store(hi, rotate(_mm256_sub_pd(first, second), w));
    }
    static TYX_FFT_INLINE void realMerge(double* lo, double* hi, const double* w) {
        const C a = load(lo);
        const C e = rotate(load(hi), w);
        const C sum = _mm256_add_pd(a, e), difference = _mm256_sub_pd(a, e);
        store(lo, _mm256_unpacklo_pd(sum, difference));
        store(hi, _mm256_unpackhi_pd(sum, difference));
    }
};

struct Avx2Lane : Sse2LaneOps<Avx2Lane>, StageLoops<Avx2Lane, Avx2Pair> {
    static constexpr int kWidth = 1;
};

}  // namespace

const FftRoutines& avx2Routines() { return FamilyRoutines<Avx2Lane>::kTable; }

}  // namespace dsp::fft
