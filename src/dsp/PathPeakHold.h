#pragma once
// The two held output peaks that the level meters read. The audio thread raises them; the
// user-interface thread reads and clears them; neither waits for the other.
//
// The audio thread keeps a block's maximum in locals and merges it once per block with
// raise(), a compare-and-swap maximum, so that a clear() from the other thread is never
// overwritten by a stale larger value read before it.

#include <atomic>
#include <cfloat>
#include <cmath>

namespace dsp {

class PathPeakHold {
public:
    // Audio thread: merges the block's largest magnitudes of sides A and B. A magnitude beyond
    // the float range holds at the largest float rather than at infinity.
    void raise(double blockPeakA, double blockPeakB) {
        raiseOne(peaks_[0], static_cast<float>(std::fmin(blockPeakA, FLT_MAX)));
        raiseOne(peaks_[1], static_cast<float>(std::fmin(blockPeakB, FLT_MAX)));
    }

    // Any thread.
    float a() const { return peaks_[0].load(std::memory_order_relaxed); }
    float b() const { return peaks_[1].load(std::memory_order_relaxed); }
    void clear() {
        peaks_[0].store(0.0f, std::memory_order_relaxed);
        peaks_[1].store(0.0f, std::memory_order_relaxed);
    }

    // Per-sample helper for the block maximum: m = max(m, |x|).
    static void track(double& m, double x) {
        const double ax = std::fabs(x);
        if (ax > m) m = ax;
    }
    // The same for both sides at once, on a pair of SidePair.h.
    template <class P>
    static void trackPair(P& m, P x) {
        m = P::max(x.abs(), m);
    }

private:
    static void raiseOne(std::atomic<float>& p, float v) {
        float old = p.load(std::memory_order_relaxed);
        while (v > old && !p.compare_exchange_weak(old, v, std::memory_order_relaxed)) {
        }
    }

    std::atomic<float> peaks_[2] = {0.0f, 0.0f};
};

}  // namespace dsp
