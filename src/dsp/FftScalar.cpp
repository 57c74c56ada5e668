// The plain family: one complex value as two doubles. It composes the same operations as the
// SIMD families in the same order, so all of them give identical numbers.

#include "dsp/FftFamilies.h"

namespace dsp::fft {
namespace {

struct ScalarLane : StageLoops<ScalarLane, ScalarLane> {
    static constexpr int kWidth = 1;
    struct C {
        double re, im;
    };
    static constexpr double kSqrtHalf = 0.70710678118654752440;

    static TYX_FFT_INLINE C load(const double* p) { return {p[0], p[1]}; }
    static TYX_FFT_INLINE void store(double* p, C z) {
        p[0] = z.re;
        p[1] = z.im;
    }
    static TYX_FFT_INLINE C add(C a, C b) { return {a.re + b.re, a.im + b.im}; }
    static TYX_FFT_INLINE C sub(C a, C b) { return {a.re - b.re, a.im - b.im}; }
    static TYX_FFT_INLINE C scale(C a, double s) { return {a.re * s, a.im * s}; }
    static TYX_FFT_INLINE C mulLanes(C a, C b) { return {a.re * b.re, a.im * b.im}; }
    static TYX_FFT_INLINE C conj(C a) { return {a.re, -a.im}; }
    static TYX_FFT_INLINE C timesMinusI(C a) { return {a.im, -a.re}; }
    static TYX_FFT_INLINE C timesI(C a) { return {-a.im, a.re}; }
    // a·b for two values.
    static TYX_FFT_INLINE C mul(C a, C b) { return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im}; }
    // z·w and z·conj(w) with w from a complex table: (wr, wr) at w[0..1], (−wi, wi) at w[4..5].
    static TYX_FFT_INLINE C rotate(C z, const double* w) {
        return {z.re * w[0] + z.im * w[4], z.im * w[1] + z.re * w[5]};
    }
    static TYX_FFT_INLINE C rotateConj(C z, const double* w) {
        return {z.re * w[0] - z.im * w[4], z.im * w[1] - z.re * w[5]};
    }

    // (x0, x1) → (x0 + x1, x0 − x1): the two-sample transform, its own transpose.
    static TYX_FFT_INLINE void realPair(double* x) {
        const double x0 = x[0], x1 = x[1];
        x[0] = x0 + x1;
        x[1] = x0 - x1;
    }
    // The real stage's rotation of d with w from the real table: (wr, −wr) at w[0..1],
    // (wi, wi) at w[4..5]. It turns (d0, −d1) by W and is its own transpose.
    static TYX_FFT_INLINE C realRotate(C d, const double* w) {
        return {d.re * w[0] + d.im * w[4], d.im * w[1] + d.re * w[5]};
    }
    static TYX_FFT_INLINE void realSplit(double* lo, double* hi, const double* w) {
        const double p0 = lo[0], p1 = lo[1], q0 = hi[0], q1 = hi[1];
        lo[0] = p0 + p1;
        lo[1] = q0 + q1;
        store(hi, realRotate({p0 - p1, q0 - q1}, w));
    }
    static TYX_FFT_INLINE void realMerge(double* lo, double* hi, const double* w) {
        const double a0 = lo[0], a1 = lo[1];
        const C e = realRotate(load(hi), w);
        lo[0] = a0 + e.re;
        lo[1] = a0 - e.re;
        hi[0] = a1 + e.im;
        hi[1] = a1 - e.im;
    }
};

}  // namespace

const FftRoutines& scalarRoutines() { return FamilyRoutines<ScalarLane>::kTable; }

}  // namespace dsp::fft
