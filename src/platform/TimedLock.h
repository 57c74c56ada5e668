#pragma once
// A recursive mutex whose waits are bounded. A wait that runs out answers false and the
// caller must then leave the state that the lock guards untouched (skip the work, and
// redo it at the next chance where that matters).

#include <mutex>

namespace platform {

class TimedLock {
public:
    static constexpr int kDefaultWaitMs = 5000;

    TimedLock() = default;
    TimedLock(const TimedLock&) = delete;
    TimedLock& operator=(const TimedLock&) = delete;

    // True when the calling thread now holds the lock (once more, if it held it already).
    bool lock(int waitMs = kDefaultWaitMs);
    void unlock();

    // Scoped ownership: check owns() before touching the guarded state.
    class Guard {
    public:
        explicit Guard(TimedLock& lock, int waitMs = kDefaultWaitMs)
            : lock_(lock), owns_(lock.lock(waitMs)) {}
        ~Guard() { if (owns_) lock_.unlock(); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        bool owns() const { return owns_; }
        explicit operator bool() const { return owns_; }
    private:
        TimedLock& lock_;
        bool owns_;
    };

private:
    std::recursive_timed_mutex mutex_;
};

}  // namespace platform
