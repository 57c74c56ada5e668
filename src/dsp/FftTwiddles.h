#pragma once
// Rotation factors of the split-radix transforms, computed once per process.
//
// For a stage length S (a power of two) the rotations W_S^t = exp(−2πi·t/S), t < S/4, are kept
// in three tables, each already in the form the arithmetic consumes, so that no transform
// spends instructions on rearranging them:
//   complexFirst(S)  W_S^t  as (wr, wr) and (−wi, wi)     complex stages, 8 ≤ S ≤ 16384
//   complexThird(S)  W_S^3t as (wr, wr) and (−wi, wi)     complex stages, 8 ≤ S ≤ 16384
//   realSplit(S)     W_S^t  as (wr, −wr) and (wi, wi)     the real stage over S samples
// z·w is then z∘(wr, wr) + swap(z)∘(−wi, wi), with ∘ the lane-wise product, and the real
// stage's rotation of (d0, −d1) is d∘(wr, −wr) + swap(d)∘(wi, wi).
//
// Layout: the rotations go in blocks of two, t = 2j and 2j + 1, of eight doubles:
//   (A_2j, A_2j+1, B_2j, B_2j+1) with A and B the two lane pairs above,
// so that a one-complex lane reads A at rotationEntry(t) and B four doubles later, and a
// two-complex lane reads A of t and t + 1 as one four-double vector. Every stage's table starts
// on a 64-byte boundary.
//
// The values are exp() of the exact angle, rounded once to double (long double arithmetic on
// the angle folded into the first octant), so zeros and ones are exact and every family reads
// the same numbers.

#include <cstddef>

namespace dsp::fft {

inline constexpr int kMaxComplexStage = 16384;  // the largest complex sub-transform
inline constexpr int kMaxRealStage = 65536;     // the real stage of the 32768-pair transform

// Doubles offset of entry t (its first lane pair; the second is 4 doubles further).
constexpr int rotationEntry(int t) { return 8 * (t >> 1) + 2 * (t & 1); }

// Offset (in doubles) of stage length S in a table holding every length from 4 up.
constexpr std::size_t stageOffset(int stage) {
    std::size_t offset = 0;
    for (int s = 4; s < stage; s *= 2) offset += static_cast<std::size_t>((s / 4 + 1) / 2) * 8;
    return offset;
}
inline constexpr std::size_t kComplexTableDoubles = stageOffset(kMaxComplexStage * 2);
inline constexpr std::size_t kRealTableDoubles = stageOffset(kMaxRealStage * 2);

// Filled before any transform can run: when the library is loaded, and again (idempotently)
// by the constructors of the classes that run transforms.
extern double gComplexFirst[kComplexTableDoubles];
extern double gComplexThird[kComplexTableDoubles];
extern double gRealSplit[kRealTableDoubles];

void ensureRotationTables();

template <int S>
[[gnu::always_inline]] inline const double* complexFirst() {
    static_assert(S >= 8 && S <= kMaxComplexStage && (S & (S - 1)) == 0);
    return gComplexFirst + stageOffset(S);
}

template <int S>
[[gnu::always_inline]] inline const double* complexThird() {
    static_assert(S >= 8 && S <= kMaxComplexStage && (S & (S - 1)) == 0);
    return gComplexThird + stageOffset(S);
}

template <int S>
[[gnu::always_inline]] inline const double* realSplit() {
    static_assert(S >= 4 && S <= kMaxRealStage && (S & (S - 1)) == 0);
    return gRealSplit + stageOffset(S);
}

}  // namespace dsp::fft
