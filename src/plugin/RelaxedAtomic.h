#pragma once
// A field that the audio thread reads while other threads write it: each read and each write
// is whole, and no ordering is implied. It suits values that are meaningful on their own (a
// step, a rate, a length); anything that must change together with something else needs more.

#include <atomic>

template <typename T>
class RelaxedAtomic {
public:
    constexpr RelaxedAtomic(T v = T()) noexcept : value_(v) {}
    RelaxedAtomic(const RelaxedAtomic&) = delete;
    RelaxedAtomic& operator=(const RelaxedAtomic&) = delete;

    operator T() const noexcept { return value_.load(std::memory_order_relaxed); }
    RelaxedAtomic& operator=(T v) noexcept {
        value_.store(v, std::memory_order_relaxed);
        return *this;
    }

private:
    std::atomic<T> value_;
};
