// The minimum-phase cascade's full wavefront steps on 256-bit registers. Register g holds
// stage g's two passes: pass 1 (one sample behind) in the low half, pass 0 in the high half,
// the order in which the samples n − 1 and n lie in memory. Pass 0 takes the output of the
// stage below's pass 1 and pass 1 the output of its own pass 0, both from the step before:
// one lane shuffle per stage and step. No fused multiply-add: every product is rounded before
// it is added, as in the pair routine, so both give the same numbers.

#pragma GCC optimize("fp-contract=off")

#include <immintrin.h>

#include "dsp/MinimumPhaseCascade.h"

namespace dsp {
namespace {

using Stage = CascadeStage;

// A state of both passes as one register: pass 1 low, pass 0 high.
__m256d loadState(const Stage& st, int kind) {
    return _mm256_set_m128d(_mm_load_pd(st.state[0][kind]), _mm_load_pd(st.state[1][kind]));
}
void storeState(Stage& st, int kind, __m256d v) {
    _mm_store_pd(st.state[1][kind], _mm256_castpd256_pd128(v));
    _mm_store_pd(st.state[0][kind], _mm256_extractf128_pd(v, 1));
}
__m256d both(const double (&c)[kSides]) { return _mm256_broadcast_pd(reinterpret_cast<const __m128d*>(c)); }

template <int S>
struct Wavefront {
    __m256d b0[S], b1[S], b2[S], a1[S], a2[S];
    // The states in two banks that trade roles every step (newest and one before), so that no
    // state is ever copied: a step writes its input and output over the older bank.
    __m256d x[2][S], y[2][S];

    // Step t, with bank `newest` holding the samples of step t − 1.
    template <int Newest>
    void step(double* pairs, int t) {
        constexpr int older = 1 - Newest;
        for (int g = 0; g < S; ++g) {
            const __m256d below = g == 0 ? _mm256_castpd128_pd256(_mm_load_pd(pairs + 2 * t)) : y[Newest][g - 1];
            const __m256d in = _mm256_permute2f128_pd(y[Newest][g], below, 0x21);  // (own pass 0, below's pass 1)
            __m256d out = _mm256_add_pd(_mm256_mul_pd(b0[g], in), _mm256_mul_pd(b1[g], x[Newest][g]));
            out = _mm256_add_pd(out, _mm256_mul_pd(b2[g], x[older][g]));
            out = _mm256_sub_pd(out, _mm256_mul_pd(a1[g], y[Newest][g]));
            out = _mm256_sub_pd(out, _mm256_mul_pd(a2[g], y[older][g]));
            x[older][g] = in;
            y[older][g] = out;
        }
        _mm_store_pd(pairs + 2 * (t - 2 * S + 1), _mm256_castpd256_pd128(y[older][S - 1]));
    }

    void run(Stage* stages, double* pairs, int from, int to) {
        for (int g = 0; g < S; ++g) {
            const Stage& st = stages[g];
            b0[g] = both(st.b0), b1[g] = both(st.b1), b2[g] = both(st.b2), a1[g] = both(st.a1), a2[g] = both(st.a2);
            x[0][g] = loadState(st, Stage::kX1), x[1][g] = loadState(st, Stage::kX2);
            y[0][g] = loadState(st, Stage::kY1), y[1][g] = loadState(st, Stage::kY2);
        }
        int t = from;
        for (; t + 1 < to; t += 2) {
            step<0>(pairs, t);
            step<1>(pairs, t + 1);
        }
        int newest = 0;
        if (t < to) step<0>(pairs, t), newest = 1;
        for (int g = 0; g < S; ++g) {
            Stage& st = stages[g];
            storeState(st, Stage::kX1, x[newest][g]), storeState(st, Stage::kX2, x[1 - newest][g]);
            storeState(st, Stage::kY1, y[newest][g]), storeState(st, Stage::kY2, y[1 - newest][g]);
            // Each pass's newest output waits in memory for the section above, as the pair
            // routine leaves it: pass 0's at sample to − 1 − 2g, pass 1's one sample earlier.
            _mm256_storeu_pd(pairs + 2 * (to - 2 - 2 * g), y[newest][g]);
        }
    }
};

template <int S>
void fullSteps(Stage* stages, double* pairs, int from, int to) {
    Wavefront<S> w;
    w.run(stages, pairs, from, to);
}

}  // namespace

void cascadeFullStepsAvx2(CascadeStage* stages, int stageCount, double* pairs, int from, int to) {
    if (from >= to) return;
    switch (stageCount) {
        case 1: return fullSteps<1>(stages, pairs, from, to);
        case 2: return fullSteps<2>(stages, pairs, from, to);
        case 3: return fullSteps<3>(stages, pairs, from, to);
        case 4: return fullSteps<4>(stages, pairs, from, to);
        case 5: return fullSteps<5>(stages, pairs, from, to);
        case 6: return fullSteps<6>(stages, pairs, from, to);
        case 7: return fullSteps<7>(stages, pairs, from, to);
        case 8: return fullSteps<8>(stages, pairs, from, to);
        default: return;
    }
}

}  // namespace dsp
