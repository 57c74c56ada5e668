#pragma once
// Whether a burst of setParameter calls comes from a preset being applied rather than from a
// user's edit. Read on any thread, the audio thread included; set only for the length of a scope.

#include <atomic>

namespace presets {

class LoadingFlag {
public:
    explicit operator bool() const noexcept { return loading_.load(std::memory_order_relaxed); }

    // Raises the flag for its lifetime and puts back what was there before.
    class Scope {
    public:
        explicit Scope(LoadingFlag& flag) noexcept
            : flag_(flag), previous_(flag.loading_.exchange(true, std::memory_order_relaxed)) {}
        ~Scope() { flag_.loading_.store(previous_, std::memory_order_relaxed); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        LoadingFlag& flag_;
        bool previous_;
    };

private:
    std::atomic<bool> loading_{false};
};

}  // namespace presets
