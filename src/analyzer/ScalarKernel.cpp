// The plain routine: the lanes of a quad one by one, in single precision.

#include "analyzer/FilterBank.h"

namespace analyzer {
namespace {

// Added to each section's output and taken off again: an output that decays into the
// subnormal range rounds to zero instead of slowing the processor down.
constexpr float kDenormalGuard = 1e-18f;

struct ScalarKernel {
    template <int Sections>
    static float run(FilterQuad& q, Lanes& levels, float c, float input, bool peak) {
        float y[kLanes] = {input, input, input, input};
        for (int k = 0; k < Sections; ++k) {
            const FilterQuad::Coefficients& cf = q.coef[k];
            FilterQuad::State& st = q.state[k];
            for (int lane = 0; lane < kLanes; ++lane) {
                float w = cf.b0.v[lane] * y[lane] + cf.b1.v[lane] * st.x1.v[lane] + cf.b2.v[lane] * st.x2.v[lane] -
                          cf.a1.v[lane] * st.w1.v[lane] - cf.a2.v[lane] * st.w2.v[lane];
                w += kDenormalGuard;
                w -= kDenormalGuard;
                st.x2.v[lane] = st.x1.v[lane];
                st.x1.v[lane] = y[lane];
                st.w2.v[lane] = st.w1.v[lane];
                st.w1.v[lane] = w;
                y[lane] = cf.g.v[lane] * w;
            }
        }
        for (int lane = 0; lane < kLanes; ++lane) {
            float& level = levels.v[lane];
            const float previous = loadLevel(level);
            storeLevel(level, peak ? updatePeakLevel(previous, y[lane], c) : updateAverageLevel(previous, y[lane], c));
        }
        return y[kLowPassLane];
    }
};

}  // namespace

void processScalar(FilterBank& bank, float x, bool peak) { bank.process<ScalarKernel>(x, peak); }

}  // namespace analyzer
