// The minimum-phase cascade's whole wavefront on 512-bit registers. Lanes 2q and 2q + 1 of a
// register hold sides A and B of stage 4·group + q; one register holds the first passes of a
// group of four stages and another their second passes, so both share the group's five
// coefficient registers. Up to eight stages take 4 section registers, 16 state registers and
// 10 coefficient registers: everything stays in registers for the whole block, where 256-bit
// registers would reload coefficients and states from memory on every step.
//
// Section j (pass j % 2 of stage j / 2) filters sample t − j at step t. A second pass takes
// its own first pass's output of the step before as it is; a first pass takes the second pass
// of the stage below, one lane pair up (valignq), the lowest stage the block's sample. The
// steps at both ends of the block, where some sections have no sample, run masked: those
// sections' states stay as they are.
//
// No fused multiply-add: every product is rounded before it is added, in the pair routine's
// order, so both give the same numbers.
//
// Where every stage has b1 = a1 (a peaking band does), a second pass's b1·x1 is the very
// product its first pass formed one step earlier as a1·y1: its x1 is that y1. The product is
// carried over instead of formed again, one multiply in ten fewer, the same number.

#pragma GCC optimize("fp-contract=off")
// GCC 12's AVX-512 intrinsics start their results from a deliberately undefined register,
// which its flow analysis then reports; nothing here reads such a value.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <immintrin.h>

#include <cstring>

#include "dsp/MinimumPhaseCascade.h"

namespace dsp {
namespace {

using Stage = CascadeStage;

template <int Stages, bool CarryB1>
struct Wavefront512 {
    static constexpr int kGroups = (Stages + 3) / 4;
    static constexpr int kRegisters = 2 * kGroups;  // register 2·group + pass
    __m512d b0[kGroups], b1[kGroups], b2[kGroups], a1[kGroups], a2[kGroups];
    // The states in two banks that trade roles every step (newest and one before).
    __m512d x[2][kRegisters], y[2][kRegisters];
    __m512d carried[kGroups];  // CarryB1: the second passes' b1·x1 for the next step

    // Lanes of stage 4·group + q from the stages, zero beyond the last.
    template <class Get>
    __m512d gather(int group, Get&& get) const {
        alignas(64) double v[8] = {};
        for (int q = 0; q < 4; ++q) {
            const int s = 4 * group + q;
            if (s >= Stages) break;
            const double* p = get(s);
            v[2 * q] = p[0], v[2 * q + 1] = p[1];
        }
        return _mm512_load_pd(v);
    }
    template <class Get>
    void scatter(int group, __m512d value, Get&& get) const {
        alignas(64) double v[8];
        _mm512_store_pd(v, value);
        for (int q = 0; q < 4; ++q) {
            const int s = 4 * group + q;
            if (s >= Stages) break;
            double* p = get(s);
            p[0] = v[2 * q], p[1] = v[2 * q + 1];
        }
    }

    static __m512d upOneStage(__m512d upper, __m512d lower) {
        return _mm512_castsi512_pd(_mm512_alignr_epi64(_mm512_castpd_si512(upper), _mm512_castpd_si512(lower), 6));
    }
    // The pair at p in lanes 6 and 7 (and everywhere else).
    static __m512d pairEverywhere(const double* p) {
        return _mm512_castps_pd(_mm512_broadcast_f32x4(_mm_castpd_ps(_mm_load_pd(p))));
    }

    // Step t with bank Newest holding step t − 1. Masked: only the lanes set in mask[r] move on.
    template <int Newest, bool Masked>
    [[gnu::always_inline]] void step(const double* input, const __mmask8* mask) {
        constexpr int older = 1 - Newest;
        __m512d in[kRegisters];
        for (int g = 0; g < kGroups; ++g) {
            const __m512d below = g == 0 ? pairEverywhere(input) : y[Newest][2 * g - 1];
            in[2 * g] = upOneStage(y[Newest][2 * g + 1], below);
            in[2 * g + 1] = y[Newest][2 * g];
        }
        __m512d firstPassA1[kGroups];
        for (int r = 0; r < kRegisters; ++r) {
            const int g = r / 2;
            const bool secondPass = r % 2;
            const __m512d b1x1 = CarryB1 && secondPass ? carried[g] : _mm512_mul_pd(b1[g], x[Newest][r]);
            const __m512d a1y1 = _mm512_mul_pd(a1[g], y[Newest][r]);
            __m512d out = _mm512_add_pd(_mm512_mul_pd(b0[g], in[r]), b1x1);
            out = _mm512_add_pd(out, _mm512_mul_pd(b2[g], x[older][r]));
            out = _mm512_sub_pd(out, a1y1);
            out = _mm512_sub_pd(out, _mm512_mul_pd(a2[g], y[older][r]));
            if constexpr (CarryB1) {
                // The second pass's next x1 is its input now, the first pass's y1. That holds in
                // the masked steps too: a second pass waits only while its first pass waits, or
                // after the first pass has stopped on the sample the second pass last took.
                if (!secondPass) firstPassA1[g] = a1y1;
                else carried[g] = firstPassA1[g];
            }
            if constexpr (Masked) {
                // A lane that stays keeps its states where they were, once the banks trade roles.
                const __m512d x1 = x[Newest][r], y1 = y[Newest][r];
                x[Newest][r] = _mm512_mask_blend_pd(mask[r], x[older][r], x1);
                y[Newest][r] = _mm512_mask_blend_pd(mask[r], y[older][r], y1);
                x[older][r] = _mm512_mask_blend_pd(mask[r], x1, in[r]);
                y[older][r] = _mm512_mask_blend_pd(mask[r], y1, out);
            } else {
                x[older][r] = in[r];
                y[older][r] = out;
            }
        }
    }

    // The lanes of register r whose sections have a sample at step t: t − count < j ≤ t, for
    // the section j = 2·(4·group + q) + pass of lanes 2q and 2q + 1.
    static void masksAt(int t, int count, __mmask8* mask) {
        for (int r = 0; r < kRegisters; ++r) {
            const int first = 8 * (r / 2) + r % 2;
            const __m512i j = _mm512_set_epi64(first + 6, first + 6, first + 4, first + 4, first + 2, first + 2, first, first);
            mask[r] = _mm512_cmpgt_epi64_mask(j, _mm512_set1_epi64(t - count)) &
                      _mm512_cmple_epi64_mask(j, _mm512_set1_epi64(t));
        }
    }

    // The last section's output of step t (sample t − sections + 1), in the bank just written.
    template <int Written>
    void emit(double* pairs, int t) const {
        constexpr int last = Stages - 1;
        const __m512d top = y[Written][2 * (last / 4) + 1];
        const __m128d pair = _mm_castps_pd(_mm512_extractf32x4_ps(_mm512_castpd_ps(top), last % 4));
        _mm_store_pd(pairs + 2 * (t - 2 * last - 1), pair);
    }

    template <int Newest>
    void maskedStep(double* pairs, int t, int count) {
        __mmask8 mask[kRegisters];
        masksAt(t, count, mask);
        step<Newest, true>(pairs + 2 * (t < count ? t : count - 1), mask);
        const int sample = t - 2 * Stages + 1;
        if (sample >= 0 && sample < count) emit<1 - Newest>(pairs, t);
    }

    void run(Stage* st, double* pairs, int count) {
        for (int g = 0; g < kGroups; ++g) {
            b0[g] = gather(g, [&](int s) { return st[s].b0; });
            b1[g] = gather(g, [&](int s) { return st[s].b1; });
            b2[g] = gather(g, [&](int s) { return st[s].b2; });
            a1[g] = gather(g, [&](int s) { return st[s].a1; });
            a2[g] = gather(g, [&](int s) { return st[s].a2; });
            for (int pass = 0; pass < 2; ++pass) {
                const int r = 2 * g + pass;
                x[0][r] = gather(g, [&](int s) { return st[s].state[pass][Stage::kX1]; });
                x[1][r] = gather(g, [&](int s) { return st[s].state[pass][Stage::kX2]; });
                y[0][r] = gather(g, [&](int s) { return st[s].state[pass][Stage::kY1]; });
                y[1][r] = gather(g, [&](int s) { return st[s].state[pass][Stage::kY2]; });
            }
            if constexpr (CarryB1) carried[g] = _mm512_setzero_pd();  // every second pass waits at step 0
        }
        const int sections = 2 * Stages, steps = count + sections - 1;
        const int fullFrom = sections - 1, fullTo = count;  // every section has a sample
        int t = 0, newest = 0;
        auto edge = [&](int to) {
            for (; t < to; ++t, newest ^= 1) {
                if (newest == 0) maskedStep<0>(pairs, t, count);
                else maskedStep<1>(pairs, t, count);
            }
        };
        edge(fullFrom < steps ? fullFrom : steps);
        if (newest == 1 && t < fullTo) {
            step<1, false>(pairs + 2 * t, nullptr);
            emit<0>(pairs, t++);
            newest = 0;
        }
        for (; t + 1 < fullTo; t += 2) {
            step<0, false>(pairs + 2 * t, nullptr);
            emit<1>(pairs, t);
            step<1, false>(pairs + 2 * t + 2, nullptr);
            emit<0>(pairs, t + 1);
        }
        if (t < fullTo) {
            step<0, false>(pairs + 2 * t, nullptr);
            emit<1>(pairs, t++);
            newest = 1;
        }
        edge(steps);

        for (int g = 0; g < kGroups; ++g)
            for (int pass = 0; pass < 2; ++pass) {
                const int r = 2 * g + pass;
                scatter(g, x[newest][r], [&](int s) { return st[s].state[pass][Stage::kX1]; });
                scatter(g, x[1 - newest][r], [&](int s) { return st[s].state[pass][Stage::kX2]; });
                scatter(g, y[newest][r], [&](int s) { return st[s].state[pass][Stage::kY1]; });
                scatter(g, y[1 - newest][r], [&](int s) { return st[s].state[pass][Stage::kY2]; });
            }
    }
};

// Whether b1 and a1 are the same number, bit for bit, on every stage and side.
bool b1IsA1(const Stage* stages, int stageCount) {
    for (int s = 0; s < stageCount; ++s)
        if (std::memcmp(stages[s].b1, stages[s].a1, sizeof stages[s].b1) != 0) return false;
    return true;
}

template <int S>
void wholeBlock(Stage* stages, double* pairs, int count) {
    if (b1IsA1(stages, S)) {
        Wavefront512<S, true> w;
        w.run(stages, pairs, count);
    } else {
        Wavefront512<S, false> w;
        w.run(stages, pairs, count);
    }
}

}  // namespace

void cascadeBlockAvx512(CascadeStage* stages, int stageCount, double* pairs, int count) {
    if (count <= 0) return;
    switch (stageCount) {
        case 1: return wholeBlock<1>(stages, pairs, count);
        case 2: return wholeBlock<2>(stages, pairs, count);
        case 3: return wholeBlock<3>(stages, pairs, count);
        case 4: return wholeBlock<4>(stages, pairs, count);
        case 5: return wholeBlock<5>(stages, pairs, count);
        case 6: return wholeBlock<6>(stages, pairs, count);
        case 7: return wholeBlock<7>(stages, pairs, count);
        case 8: return wholeBlock<8>(stages, pairs, count);
        default: return;
    }
}

}  // namespace dsp
