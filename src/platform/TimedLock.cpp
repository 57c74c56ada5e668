#include "platform/TimedLock.h"

#include <chrono>

namespace platform {

bool TimedLock::lock(int waitMs) {
    std::unique_lock<std::mutex> guard(mutex_);
    const std::thread::id me = std::this_thread::get_id();
    if (depth_ > 0 && owner_ == me) {
        ++depth_;
        return true;
    }
    const auto free = [this] { return depth_ == 0; };
    if (!released_.wait_for(guard, std::chrono::milliseconds(waitMs > 0 ? waitMs : 0), free)) return false;
    owner_ = me;
    depth_ = 1;
    return true;
}

void TimedLock::unlock() {
    std::unique_lock<std::mutex> guard(mutex_);
    if (depth_ == 0 || owner_ != std::this_thread::get_id()) return;  // not ours to release
    if (--depth_ == 0) {
        owner_ = std::thread::id();
        guard.unlock();
        released_.notify_one();
    }
}

}  // namespace platform
