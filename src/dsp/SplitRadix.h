#pragma once
// The split-radix transforms of 2M real samples, written once over a "lane" policy P that
// supplies the arithmetic on one complex value (scalar C++, SSE2, ...). Internal to the FFT
// families; include only from a family's .cpp file.
//
// Layout. The buffer holds M pairs of doubles. In the time domain pair t is (x[t], x[t + M])
// (the half-interleaved layout). In the frequency domain pair 0 is (X[0], X[M]), both real,
// and every other pair holds one complex bin 1..M−1 in the order in which the recursion below
// leaves them (see FftLayout.h for the position of a bin).
//
// Forward transform of 2M reals, decimation in frequency. With pairs p = pair t and
// q = pair t + M/2 (t < M/2), i.e. the four samples x[t + jM/2], j = 0..3:
//   pair t       ← (p0 + p1, q0 + q1)                     the 2M-point even bins X[2m] are
//                                                          the M-point real transform of these
//   pair t + M/2 ← ((p0 − p1) − i(q0 − q1)) · W_2M^t      the complex M/2-point transform of
//                                                          these gives the odd bins X[4k + 1]
// so the first half recurses as a real transform of half the size and the second half is a
// complex split-radix transform of M/2 points. Its outputs X[4k + 1] with 4k + 1 > M are the
// conjugates of the bins X[2M − 4k − 1] below M; the complex transform's smallest blocks
// conjugate those outputs as they store them, so every pair ends up holding a true bin.
//
// Complex transform of L points, decimation in frequency, in place, no reordering: with a, b,
// c, d the points t, t + L/4, t + L/2, t + 3L/4 (t < L/4),
//   a ← a + c,  b ← b + d,  c ← ((a − c) − i(b − d))·W_L^t,  d ← ((a − c) + i(b − d))·W_L^3t,
// then the first half recurses at L/2 and the two last quarters at L/4. The outputs are in
// bit-reversed order, and an output has an index of at least L/2 exactly when its position is
// odd: those are the ones the blocks of 2 and 4 points conjugate.
//
// The inverse transforms run the same steps mirrored (sub-blocks first, conjugate rotations,
// conjugation on the way in); each is the exact transpose of its forward transform, which for
// the real transform is the unnormalised synthesis
//   x[t] = X[0] + (−1)^t X[M] + Σ_{k=1}^{M−1} (Re X[k] cos(πkt/M) − Im X[k] sin(πkt/M)).
//
// Every family composes the same primitive operations in the same order, so the families
// agree bit for bit. Blocks of up to kStraightLine points are inlined into straight-line code
// (where the rotations by W^0 and W^(L/8) are done without a table); larger ones are loops.

#include <utility>

#include "dsp/FftTwiddles.h"

#define TYX_FFT_INLINE inline __attribute__((always_inline))
#define TYX_FFT_OUTLINE __attribute__((noinline))

namespace dsp::fft {

inline constexpr int kStraightLine = 32;

// Calls Step::template at<T>(args...) for T = 0 .. Count − 1, as straight-line code.
template <class Step, int... T, class... Args>
TYX_FFT_INLINE void eachStep(std::integer_sequence<int, T...>, Args... args) {
    (Step::template at<T>(args...), ...);
}
template <class Step, int Count, class... Args>
TYX_FFT_INLINE void unrolled(Args... args) {
    eachStep<Step>(std::make_integer_sequence<int, Count>{}, args...);
}

// ---- Complex transform, forward ---------------------------------------------------------------

template <class P, int L>
struct ComplexForward {
    using C = typename P::C;
    static constexpr int kQ = 2 * (L / 4);  // a quarter of the block, in doubles

    // The sums and differences of one butterfly; returns the two values still to be rotated.
    static TYX_FFT_INLINE void butterfly(double* z, C& u, C& v) {
        const C a = P::load(z), b = P::load(z + kQ), c = P::load(z + 2 * kQ), d = P::load(z + 3 * kQ);
        P::store(z, P::add(a, c));
        P::store(z + kQ, P::add(b, d));
        const C e = P::sub(a, c);
        const C g = P::timesMinusI(P::sub(b, d));
        u = P::add(e, g);
        v = P::sub(e, g);
    }

    // Butterfly t of a straight-line block: the rotations by W^0 and W^(L/8) need no table.
    template <int t>
    static TYX_FFT_INLINE void at(double* z) {
        C u, v;
        butterfly(z + 2 * t, u, v);
        if constexpr (t == 0) {
        } else if constexpr (8 * t == L) {
            u = P::scale(P::add(u, P::timesMinusI(u)), P::kSqrtHalf);  // · e^(−iπ/4)
            v = P::scale(P::sub(P::timesMinusI(v), v), P::kSqrtHalf);  // · e^(−3iπ/4)
        } else {
            u = P::rotate(u, complexFirst<L>() + rotationEntry(t));
            v = P::rotate(v, complexThird<L>() + rotationEntry(t));
        }
        P::store(z + 2 * t + 2 * kQ, u);
        P::store(z + 2 * t + 3 * kQ, v);
    }
    static TYX_FFT_INLINE void stageUnrolled(double* z) { unrolled<ComplexForward, L / 4>(z); }

    static TYX_FFT_INLINE void run(double* z) {
        if constexpr (L == 1) {
        } else if constexpr (L == 2) {
            const C a = P::load(z), b = P::load(z + 2);
            P::store(z, P::add(a, b));
            P::store(z + 2, P::conj(P::sub(a, b)));
        } else if constexpr (L == 4) {
            C u, v;
            butterfly(z, u, v);
            const C s0 = P::load(z), s1 = P::load(z + 2);
            P::store(z, P::add(s0, s1));
            P::store(z + 2, P::conj(P::sub(s0, s1)));
            P::store(z + 4, u);
            P::store(z + 6, P::conj(v));
        } else if constexpr (L <= kStraightLine) {
            stageUnrolled(z);
            recurse(z);
        } else {
            outlined(z);
        }
    }

    static TYX_FFT_INLINE void recurse(double* z) {
        ComplexForward<P, L / 2>::run(z);
        ComplexForward<P, L / 4>::run(z + 2 * kQ);
        ComplexForward<P, L / 4>::run(z + 3 * kQ);
    }

    static TYX_FFT_OUTLINE void outlined(double* z) {
        P::template complexStage<L>(z);
        recurse(z);
    }
};

// ---- Complex transform, inverse ---------------------------------------------------------------

template <class P, int L>
struct ComplexInverse {
    using C = typename P::C;
    static constexpr int kQ = 2 * (L / 4);

    // The butterfly on rotated u (from c) and v (from d).
    static TYX_FFT_INLINE void butterfly(double* z, C u, C v) {
        const C s0 = P::load(z), s1 = P::load(z + kQ);
        const C p = P::add(u, v);
        const C m = P::timesI(P::sub(u, v));
        P::store(z, P::add(s0, p));
        P::store(z + 2 * kQ, P::sub(s0, p));
        P::store(z + kQ, P::add(s1, m));
        P::store(z + 3 * kQ, P::sub(s1, m));
    }

    template <int t>
    static TYX_FFT_INLINE void at(double* z) {
        double* y = z + 2 * t;
        C u = P::load(y + 2 * kQ), v = P::load(y + 3 * kQ);
        if constexpr (t == 0) {
        } else if constexpr (8 * t == L) {
            u = P::scale(P::add(u, P::timesI(u)), P::kSqrtHalf);  // · e^(iπ/4)
            v = P::scale(P::sub(P::timesI(v), v), P::kSqrtHalf);  // · e^(3iπ/4)
        } else {
            u = P::rotateConj(u, complexFirst<L>() + rotationEntry(t));
            v = P::rotateConj(v, complexThird<L>() + rotationEntry(t));
        }
        butterfly(y, u, v);
    }
    static TYX_FFT_INLINE void stageUnrolled(double* z) { unrolled<ComplexInverse, L / 4>(z); }

    static TYX_FFT_INLINE void run(double* z) {
        if constexpr (L == 1) {
        } else if constexpr (L == 2) {
            const C a = P::load(z), b = P::conj(P::load(z + 2));
            P::store(z, P::add(a, b));
            P::store(z + 2, P::sub(a, b));
        } else if constexpr (L == 4) {
            const C x0 = P::load(z), x2 = P::conj(P::load(z + 2));
            P::store(z, P::add(x0, x2));
            P::store(z + 2, P::sub(x0, x2));
            butterfly(z, P::load(z + 4), P::conj(P::load(z + 6)));
        } else if constexpr (L <= kStraightLine) {
            recurse(z);
            stageUnrolled(z);
        } else {
            outlined(z);
        }
    }

    static TYX_FFT_INLINE void recurse(double* z) {
        ComplexInverse<P, L / 2>::run(z);
        ComplexInverse<P, L / 4>::run(z + 2 * kQ);
        ComplexInverse<P, L / 4>::run(z + 3 * kQ);
    }

    static TYX_FFT_OUTLINE void outlined(double* z) {
        recurse(z);
        P::template complexStageInverse<L>(z);
    }
};

// ---- Real transform of 2M samples ------------------------------------------------------------

template <class P, int M>
struct RealForward {
    template <int t>
    static TYX_FFT_INLINE void at(double* x) { P::realSplit(x + 2 * t, x + 2 * t + M, realSplit<2 * M>() + rotationEntry(t)); }

    static TYX_FFT_INLINE void run(double* x) {
        if constexpr (M == 1) {
            P::realPair(x);
        } else if constexpr (M <= kStraightLine) {
            unrolled<RealForward, M / 2>(x);
            recurse(x);
        } else {
            outlined(x);
        }
    }

    static TYX_FFT_INLINE void recurse(double* x) {
        RealForward<P, M / 2>::run(x);
        ComplexForward<P, M / 2>::run(x + M);
    }

    static TYX_FFT_OUTLINE void outlined(double* x) {
        P::template realStage<M>(x);
        recurse(x);
    }
};

template <class P, int M>
struct RealInverse {
    template <int t>
    static TYX_FFT_INLINE void at(double* x) { P::realMerge(x + 2 * t, x + 2 * t + M, realSplit<2 * M>() + rotationEntry(t)); }

    static TYX_FFT_INLINE void run(double* x) {
        if constexpr (M == 1) {
            P::realPair(x);
        } else if constexpr (M <= kStraightLine) {
            recurse(x);
            unrolled<RealInverse, M / 2>(x);
        } else {
            outlined(x);
        }
    }

    static TYX_FFT_INLINE void recurse(double* x) {
        RealInverse<P, M / 2>::run(x);
        ComplexInverse<P, M / 2>::run(x + M);
    }

    static TYX_FFT_OUTLINE void outlined(double* x) {
        recurse(x);
        P::template realStageInverse<M>(x);
    }
};

// ---- The loops of the large blocks and the spectrum operations ------------------------------
// A family's lane type derives from StageLoops<P, W>: P is the family's one-complex lane, W
// the lane its loops run on, holding W::kWidth (1 or 2) consecutive complex values. Loops take
// the butterflies two at a time (t = 2j and 2j + 1), which is one step of a two-complex lane
// and keeps the table addressing (rotationEntry) free of arithmetic either way.

template <class P, class W>
struct StageLoops {
    template <int L>
    static void complexStage(double* z) {
        static_assert(L >= 8 && (W::kWidth == 1 || W::kWidth == 2));
        using Block = ComplexForward<W, L>;
        const double* w1 = complexFirst<L>();
        const double* w3 = complexThird<L>();
        for (int j = 0; j < L / 8; ++j) {
            for (int k = 0; k < 2; k += W::kWidth) {
                double* y = z + 4 * j + 2 * k;
                typename W::C u, v;
                Block::butterfly(y, u, v);
                W::store(y + 2 * Block::kQ, W::rotate(u, w1 + 8 * j + 2 * k));
                W::store(y + 3 * Block::kQ, W::rotate(v, w3 + 8 * j + 2 * k));
            }
        }
    }

    template <int L>
    static void complexStageInverse(double* z) {
        static_assert(L >= 8);
        using Block = ComplexInverse<W, L>;
        const double* w1 = complexFirst<L>();
        const double* w3 = complexThird<L>();
        for (int j = 0; j < L / 8; ++j) {
            for (int k = 0; k < 2; k += W::kWidth) {
                double* y = z + 4 * j + 2 * k;
                Block::butterfly(y, W::rotateConj(W::load(y + 2 * Block::kQ), w1 + 8 * j + 2 * k),
                                 W::rotateConj(W::load(y + 3 * Block::kQ), w3 + 8 * j + 2 * k));
            }
        }
    }

    template <int M>
    static void realStage(double* x) {
        const double* w = realSplit<2 * M>();
        for (int j = 0; j < M / 4; ++j)
            for (int k = 0; k < 2; k += W::kWidth) W::realSplit(x + 4 * j + 2 * k, x + 4 * j + 2 * k + M, w + 8 * j + 2 * k);
    }

    template <int M>
    static void realStageInverse(double* x) {
        const double* w = realSplit<2 * M>();
        for (int j = 0; j < M / 4; ++j)
            for (int k = 0; k < 2; k += W::kWidth) W::realMerge(x + 4 * j + 2 * k, x + 4 * j + 2 * k + M, w + 8 * j + 2 * k);
    }

    // Entries 0 and 1 (the real bins 0 and M) by 1/(2M), every other entry by 1/M.
    template <int M>
    static void scaleSpectrum(double* x) {
        constexpr double s = 1.0 / (2.0 * M);
        P::store(x, P::scale(P::load(x), s));
        P::store(x + 2, P::scale(P::load(x + 2), 2.0 * s));
        for (int j = 2; j < M; j += W::kWidth) W::store(x + 2 * j, W::scale(W::load(x + 2 * j), 2.0 * s));
    }

    // data ← data · kernel: the two real bins as gains, every other pair as a complex number.
    template <int M>
    static void multiplySpectrum(double* data, const double* kernel) {
        P::store(data, P::mulLanes(P::load(data), P::load(kernel)));
        P::store(data + 2, P::mul(P::load(data + 2), P::load(kernel + 2)));
        for (int j = 2; j < M; j += W::kWidth) W::store(data + 2 * j, W::mul(W::load(data + 2 * j), W::load(kernel + 2 * j)));
    }
};

}  // namespace dsp::fft
