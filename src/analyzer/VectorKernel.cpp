// The SSE routine: four filters of a quad in one register, operation for operation the
// same arithmetic as the plain routine, so that both give the same levels.

#include <xmmintrin.h>

#include "analyzer/FilterBank.h"

namespace analyzer {
namespace {

// MXCSR bits: flush results and treat inputs that are subnormal as zero. With them the
// sections need no guard constant against slow subnormal arithmetic.
constexpr unsigned kFlushToZero = 0x8000u;
constexpr unsigned kDenormalsAreZero = 0x0040u;

// Writing the control register is slow next to one sample's work, so it is written only
// when the modes are not already on (many hosts run with them on).
class FlushDenormalsScope {
public:
    FlushDenormalsScope() : saved_(_mm_getcsr()) {
        if ((saved_ & kModes) != kModes) _mm_setcsr(saved_ | kModes);
    }
    ~FlushDenormalsScope() {
        if ((saved_ & kModes) != kModes) _mm_setcsr(saved_);
    }
    FlushDenormalsScope(const FlushDenormalsScope&) = delete;
    FlushDenormalsScope& operator=(const FlushDenormalsScope&) = delete;

private:
    static constexpr unsigned kModes = kFlushToZero | kDenormalsAreZero;
    unsigned saved_;
};

inline __m128 load(const Lanes& l) { return _mm_load_ps(l.v); }
inline void store(Lanes& l, __m128 v) { _mm_store_ps(l.v, v); }

struct VectorKernel {
    template <int Sections>
    static float run(FilterQuad& q, Lanes& levels, float c, float input, bool peak) {
        __m128 y = _mm_set1_ps(input);
        for (int k = 0; k < Sections; ++k) {
            const FilterQuad::Coefficients& cf = q.coef[k];
            FilterQuad::State& st = q.state[k];
            const __m128 x1 = load(st.x1);
            const __m128 w1 = load(st.w1);
            __m128 w = _mm_mul_ps(load(cf.b0), y);
            w = _mm_add_ps(w, _mm_mul_ps(load(cf.b1), x1));
            w = _mm_add_ps(w, _mm_mul_ps(load(cf.b2), load(st.x2)));
            w = _mm_sub_ps(w, _mm_mul_ps(load(cf.a1), w1));
            w = _mm_sub_ps(w, _mm_mul_ps(load(cf.a2), load(st.w2)));
            store(st.x2, x1);
            store(st.x1, y);
            store(st.w2, w1);
            store(st.w1, w);
            y = _mm_mul_ps(load(cf.g), w);
        }

        // Levels are read by other threads lane by lane, so they are loaded and stored so.
        const __m128 level = _mm_setr_ps(loadLevel(levels.v[0]), loadLevel(levels.v[1]),
                                         loadLevel(levels.v[2]), loadLevel(levels.v[3]));
        const __m128 coef = _mm_set1_ps(c);
        __m128 updated;
        if (peak) {
            const __m128 a = _mm_andnot_ps(_mm_set1_ps(-0.0f), y);
            const __m128 s = _mm_add_ps(level, _mm_mul_ps(coef, _mm_sub_ps(a, level)));
            updated = _mm_max_ps(s, a);
        } else {
            updated = _mm_add_ps(level, _mm_mul_ps(coef, _mm_sub_ps(_mm_mul_ps(y, y), level)));
        }
        updated = _mm_max_ps(updated, _mm_set1_ps(kLevelFloor));

        alignas(16) float lanes[kLanes];
        _mm_store_ps(lanes, updated);
        for (int lane = 0; lane < kLanes; ++lane) storeLevel(levels.v[lane], lanes[lane]);

        alignas(16) float outputs[kLanes];
        _mm_store_ps(outputs, y);
        return outputs[kLowPassLane];
    }
};

}  // namespace

void processVector(FilterBank& bank, float x, bool peak) {
    const FlushDenormalsScope flush;
    bank.process<VectorKernel>(x, peak);
}

}  // namespace analyzer
