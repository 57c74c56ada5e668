#pragma once
// A recursive mutex whose waits are bounded. A wait that runs out answers false and the
// caller must then leave the state that the lock guards untouched (skip the work, and
// redo it at the next chance where that matters).

#include <condition_variable>
#include <mutex>
#include <thread>

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
    // Built from a plain mutex and a condition variable rather than a timed mutex: the timed
    // mutex's wait is a call that ThreadSanitizer cannot follow, and the threaded tests must
    // see every hand-over that this lock makes.
    std::mutex mutex_;
    std::condition_variable released_;
    std::thread::id owner_;
    int depth_ = 0;
};

}  // namespace platform
