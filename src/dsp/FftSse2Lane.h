#pragma once
// The SSE2 lane: one complex value per 128-bit register, (re, im). Internal to the FFT
// families. Each family file that uses it derives its own lane type from this template inside
// an anonymous namespace, so that the code instantiated for it is compiled with that file's
// instruction set only (plain SSE2 in the SSE2 family, VEX-encoded in the AVX2 family's small
// blocks) and never shared across files.

#include <emmintrin.h>

#include "dsp/SplitRadix.h"

namespace dsp::fft {

template <class Self>
struct Sse2LaneOps {
    using C = __m128d;
    static constexpr double kSqrtHalf = 0.70710678118654752440;

    static TYX_FFT_INLINE C signLow() { return _mm_set_pd(0.0, -0.0); }
    static TYX_FFT_INLINE C signHigh() { return _mm_set_pd(-0.0, 0.0); }
    static TYX_FFT_INLINE C swap(C a) { return _mm_shuffle_pd(a, a, 1); }

    static TYX_FFT_INLINE C load(const double* p) { return _mm_load_pd(p); }
    static TYX_FFT_INLINE void store(double* p, C z) { _mm_store_pd(p, z); }
    static TYX_FFT_INLINE C add(C a, C b) { return _mm_add_pd(a, b); }
    static TYX_FFT_INLINE C sub(C a, C b) { return _mm_sub_pd(a, b); }
    static TYX_FFT_INLINE C scale(C a, double s) { return _mm_mul_pd(a, _mm_set1_pd(s)); }
    static TYX_FFT_INLINE C mulLanes(C a, C b) { return _mm_mul_pd(a, b); }
    static TYX_FFT_INLINE C conj(C a) { return _mm_xor_pd(a, signHigh()); }
    static TYX_FFT_INLINE C timesMinusI(C a) { return _mm_xor_pd(swap(a), signHigh()); }
    static TYX_FFT_INLINE C timesI(C a) { return _mm_xor_pd(swap(a), signLow()); }
    static TYX_FFT_INLINE C mul(C a, C b) {
        const C re = _mm_unpacklo_pd(b, b), im = _mm_unpackhi_pd(b, b);
        return _mm_add_pd(_mm_mul_pd(a, re), _mm_xor_pd(_mm_mul_pd(swap(a), im), signLow()));
    }
    // z·w = z∘(wr, wr) + swap(z)∘(−wi, wi); z·conj(w) the same with a subtraction.
    static TYX_FFT_INLINE C rotate(C z, const double* w) {
        return _mm_add_pd(_mm_mul_pd(z, _mm_load_pd(w)), _mm_mul_pd(swap(z), _mm_load_pd(w + 4)));
    }
    static TYX_FFT_INLINE C rotateConj(C z, const double* w) {
        return _mm_sub_pd(_mm_mul_pd(z, _mm_load_pd(w)), _mm_mul_pd(swap(z), _mm_load_pd(w + 4)));
    }

    static TYX_FFT_INLINE void realPair(double* x) {
        const C v = _mm_load_pd(x);
        const C sum = _mm_add_pd(v, swap(v)), difference = _mm_sub_pd(v, swap(v));
        _mm_store_pd(x, _mm_unpacklo_pd(sum, difference));
    }
    // With the real table, rotate() turns (d0, −d1) by W, and is its own transpose.
    static TYX_FFT_INLINE void realSplit(double* lo, double* hi, const double* w) {
        const C p = _mm_load_pd(lo), q = _mm_load_pd(hi);
        const C first = _mm_unpacklo_pd(p, q), second = _mm_unpackhi_pd(p, q);  // (p0, q0), (p1, q1)
        _mm_store_pd(lo, _mm_add_pd(first, second));
        _mm_store_pd(hi, rotate(_mm_sub_pd(first, second), w));
    }
    static TYX_FFT_INLINE void realMerge(double* lo, double* hi, const double* w) {
        const C a = _mm_load_pd(lo);
        const C e = rotate(_mm_load_pd(hi), w);
        const C sum = _mm_add_pd(a, e), difference = _mm_sub_pd(a, e);
        _mm_store_pd(lo, _mm_unpacklo_pd(sum, difference));
        _mm_store_pd(hi, _mm_unpackhi_pd(sum, difference));
    }
};

}  // namespace dsp::fft
