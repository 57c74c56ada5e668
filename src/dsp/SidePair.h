#pragma once
// One sample of each side, A and B, as the per-sample routines of the audio path handle them.
//
// Every per-sample routine is written once, as a template over the pair type, and exists in
// two families: PlainPair does each operation on side A and then on side B with scalar
// arithmetic; Sse2Pair keeps A and B in the two lanes of one SSE2 register and does the same
// operation once on both. Each operation rounds each lane exactly as the scalar operation
// would, and the templates fix the order of the operations, so the two families give
// bit-identical results. That holds only while no operation is fused or reassociated: the
// build uses neither -ffast-math nor FMA contraction for these routines.
//
// Memory holding pairs keeps them interleaved, A then B, on 16-byte boundaries.

#include <emmintrin.h>

#include <cfloat>
#include <cmath>

#include "platform/CpuFeatures.h"

namespace dsp {

// x itself when finite, else +0: NaN and ±Inf never travel further than where this is applied.
inline double finiteOrZero(double x) { return std::fabs(x) <= DBL_MAX ? x : 0.0; }

enum class PathFamily { Plain, Sse2 };

// SSE2 wherever the processor and the operating system offer it.
inline PathFamily defaultPathFamily() {
    return platform::cpuFeatures().usable(platform::kCpuSse2) ? PathFamily::Sse2 : PathFamily::Plain;
}

// Whether the SSE2 family may run its longest loops on 256-bit registers: where the processor
// and the operating system offer AVX2. Those loops give the same numbers as the 128-bit ones.
inline bool avx2Usable() { return platform::cpuFeatures().usable(platform::kCpuSse2 | platform::kCpuAvx2); }

inline const char* pathFamilyName(PathFamily family) { return family == PathFamily::Sse2 ? "sse2" : "plain"; }

struct PlainPair {
    double va, vb;

    static PlainPair make(double a, double b) { return {a, b}; }
    static PlainPair splat(double x) { return {x, x}; }
    static PlainPair zero() { return {0.0, 0.0}; }
    static PlainPair load(const double* p) { return {p[0], p[1]}; }
    void store(double* p) const {
        p[0] = va;
        p[1] = vb;
    }
    double a() const { return va; }
    double b() const { return vb; }

    friend PlainPair operator+(PlainPair x, PlainPair y) { return {x.va + y.va, x.vb + y.vb}; }
    friend PlainPair operator-(PlainPair x, PlainPair y) { return {x.va - y.va, x.vb - y.vb}; }
    friend PlainPair operator*(PlainPair x, PlainPair y) { return {x.va * y.va, x.vb * y.vb}; }

    // |x| per side.
    PlainPair abs() const { return {std::fabs(va), std::fabs(vb)}; }
    // x > m ? x : m per side (m kept when either is NaN).
    static PlainPair max(PlainPair x, PlainPair m) { return {x.va > m.va ? x.va : m.va, x.vb > m.vb ? x.vb : m.vb}; }
    // (a, b) → (−b, a) and (b, −a): the cross terms of the mid/side matrix.
    PlainPair crossed() const { return {-vb, va}; }
    PlainPair crossedBack() const { return {vb, -va}; }
    // Side A from `forA`, side B from `forB`.
    static PlainPair sides(PlainPair forA, PlainPair forB) { return {forA.va, forB.vb}; }
    // Per side: the value when finite, else +0.
    PlainPair finiteOrZero() const { return {dsp::finiteOrZero(va), dsp::finiteOrZero(vb)}; }
    // Whether both sides are exactly zero (of either sign).
    bool bothZero() const { return va == 0.0 && vb == 0.0; }
};

struct Sse2Pair {
    __m128d v;

    static Sse2Pair make(double a, double b) { return {_mm_set_pd(b, a)}; }
    static Sse2Pair splat(double x) { return {_mm_set1_pd(x)}; }
    static Sse2Pair zero() { return {_mm_setzero_pd()}; }
    static Sse2Pair load(const double* p) { return {_mm_load_pd(p)}; }
    void store(double* p) const { _mm_store_pd(p, v); }
    double a() const { return _mm_cvtsd_f64(v); }
    double b() const { return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v)); }

    friend Sse2Pair operator+(Sse2Pair x, Sse2Pair y) { return {_mm_add_pd(x.v, y.v)}; }
    friend Sse2Pair operator-(Sse2Pair x, Sse2Pair y) { return {_mm_sub_pd(x.v, y.v)}; }
    friend Sse2Pair operator*(Sse2Pair x, Sse2Pair y) { return {_mm_mul_pd(x.v, y.v)}; }

    Sse2Pair abs() const { return {_mm_andnot_pd(_mm_set1_pd(-0.0), v)}; }
    // maxpd returns its second operand unless the first is greater: x > m ? x : m.
    static Sse2Pair max(Sse2Pair x, Sse2Pair m) { return {_mm_max_pd(x.v, m.v)}; }
    Sse2Pair crossed() const { return {_mm_xor_pd(_mm_shuffle_pd(v, v, 1), _mm_set_pd(0.0, -0.0))}; }
    Sse2Pair crossedBack() const { return {_mm_xor_pd(_mm_shuffle_pd(v, v, 1), _mm_set_pd(-0.0, 0.0))}; }
    static Sse2Pair sides(Sse2Pair forA, Sse2Pair forB) { return {_mm_move_sd(forB.v, forA.v)}; }
    // |x| <= DBL_MAX is false for NaN and ±Inf; the mask keeps the finite lanes.
    Sse2Pair finiteOrZero() const {
        return {_mm_and_pd(v, _mm_cmple_pd(abs().v, _mm_set1_pd(DBL_MAX)))};
    }
    bool bothZero() const { return _mm_movemask_pd(_mm_cmpeq_pd(v, _mm_setzero_pd())) == 0x3; }
};

// A table of coefficients stored as pairs (c, c), so that either family loads a coefficient
// for both sides with one aligned load.
template <int Count>
struct PairedTaps {
    alignas(16) double c[2 * Count];
    const double* at(int i) const { return c + 2 * i; }
};

}  // namespace dsp
