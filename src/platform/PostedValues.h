#pragma once
// Values posted by one thread for whichever thread holds a lock to apply: for each of Count
// slots its newest value and a pending bit, both atomics. A slot posted twice before anyone
// drains it is applied once, with its last value. Posting never waits and never allocates.

#include <atomic>
#include <cstdint>

namespace platform {

template <int Count>
class PostedValues {
public:
    // Any thread: slot 0..Count − 1 now wants value.
    void post(int slot, float value) {
        value_[slot].store(value, std::memory_order_relaxed);
        pending_[slot / 64].fetch_or(uint64_t{1} << (slot % 64), std::memory_order_release);
    }

    bool pending() const {
        for (const auto& word : pending_)
            if (word.load(std::memory_order_acquire)) return true;
        return false;
    }

    // The lock holder: apply(slot, value) for every slot posted so far, lowest slot first.
    template <class Apply>
    void drain(Apply&& apply) {
        for (int w = 0; w < kWords; ++w) {
            uint64_t bits = pending_[w].exchange(0, std::memory_order_acquire);
            while (bits) {
                const int bit = __builtin_ctzll(bits);
                bits &= bits - 1;
                const int slot = 64 * w + bit;
                apply(slot, value_[slot].load(std::memory_order_relaxed));
            }
        }
    }

private:
    static constexpr int kWords = (Count + 63) / 64;
    std::atomic<float> value_[Count] = {};
    std::atomic<uint64_t> pending_[kWords] = {};
};

}  // namespace platform
