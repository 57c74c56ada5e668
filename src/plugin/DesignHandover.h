#pragma once
// Parameter changes whose consequences need the design lock (band settings, FAT, Resolution,
// LinPhase, Solo), recorded so that whichever thread holds that lock can apply them: one
// queue of these is how the audio thread's automation reaches the design without waiting
// (EqualizerControl.h has the rule). A change is its newest value and a pending bit, both
// atomics; a change posted twice before anyone drains it is applied once, with its last
// value, which is the value the parameter has anyway.

#include <atomic>
#include <cstdint>

#include "presets/Parameters.h"

class DesignHandover {
public:
    // Any thread: index 0..kUsedParameters − 1 changed to value.
    void post(int index, float value) {
        value_[index].store(value, std::memory_order_relaxed);
        pending_[index / 64].fetch_or(uint64_t{1} << (index % 64), std::memory_order_release);
    }

    bool pending() const {
        for (const auto& word : pending_)
            if (word.load(std::memory_order_acquire)) return true;
        return false;
    }

    // The lock holder: apply(index, value) for every change posted so far, lowest index first.
    template <class Apply>
    void drain(Apply&& apply) {
        for (int w = 0; w < kWords; ++w) {
            uint64_t bits = pending_[w].exchange(0, std::memory_order_acquire);
            while (bits) {
                const int bit = __builtin_ctzll(bits);
                bits &= bits - 1;
                const int index = 64 * w + bit;
                apply(index, value_[index].load(std::memory_order_relaxed));
            }
        }
    }

private:
    static constexpr int kWords = (params::kUsedParameters + 63) / 64;
    std::atomic<float> value_[params::kUsedParameters] = {};
    std::atomic<uint64_t> pending_[kWords] = {};
};
