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

TEST(TimedLock, GuardsSharedStateAcrossThreads) {
    platform::TimedLock lock;
    long counter = 0;  // plain data: only the lock orders the threads' accesses
    auto work = [&] {
        for (int i = 0; i < 2000; ++i) {
            platform::TimedLock::Guard outer(lock);
            ASSERT_TRUE(outer.owns());
            platform::TimedLock::Guard inner(lock);  // recursion on the same thread
            ++counter;
        }
    };
    std::thread a(work), b(work), c(work);
    a.join();
    b.join();
    c.join();
    EXPECT_EQ(counter, 6000);
}
