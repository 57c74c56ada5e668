#include "platform/TimedLock.h"

#include <chrono>

namespace platform {

bool TimedLock::lock(int waitMs) {
    if (waitMs <= 0) return mutex_.try_lock();
    return mutex_.try_lock_for(std::chrono::milliseconds(waitMs));
}

void TimedLock::unlock() { mutex_.unlock(); }

}  // namespace platform
