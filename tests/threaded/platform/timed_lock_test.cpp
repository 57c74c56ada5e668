#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/TimedLock.h"

TEST(TimedLock, RecursiveOnOneThreadBoundedForOthers) {
    platform::TimedLock lock;
    ASSERT_TRUE(lock.lock());
    ASSERT_TRUE(lock.lock());  // the same thread may take it again
    std::atomic<int> result{-1};
    std::thread other([&] { result = lock.lock(50) ? 1 : 0; });
    other.join();
    EXPECT_EQ(result, 0) << "a wait that runs out answers false";
    lock.unlock();
    lock.unlock();
    std::thread again([&] {
        platform::TimedLock::Guard guard(lock, 1000);
        result = guard.owns() ? 1 : 0;
    });
    again.join();
    EXPECT_EQ(result, 1);
}
