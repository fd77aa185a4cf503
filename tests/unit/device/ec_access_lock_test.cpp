#include "device/ec_access_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace tarnDeviceInfos;

TEST(EcAccessLockTest, MayBeGivenBackByAnotherThread)
{
    EcAccessLock lock;
    ASSERT_TRUE(lock.lock());
    std::thread([&lock] { lock.unlock(); }).join();
    EXPECT_FALSE(lock.isLocked());
    EXPECT_TRUE(lock.lock());
}

TEST(EcAccessLockTest, KeepsExchangesApart)
{
    EcAccessLock lock;
    int inside = 0;
    int total = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 1000; ++round) {
                ASSERT_TRUE(lock.lock());
                EXPECT_EQ(++inside, 1);
                ++total;
                --inside;
                lock.unlock();
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(total, 4000);
}

TEST(EcAccessLockTest, ReleasesItsWaitersForTheEnd)
{
    EcAccessLock lock;
    ASSERT_TRUE(lock.lock());
    std::atomic<int> failed {0};
    std::vector<std::thread> waiters;
    for (int waiter = 0; waiter < 3; ++waiter)
        waiters.emplace_back([&] { failed += lock.lock() ? 0 : 1; });
    lock.releaseWaiters();
    for (auto &waiter : waiters)
        waiter.join();
    EXPECT_EQ(failed, 3);
    EXPECT_TRUE(lock.isLocked());
    lock.unlock();
    EXPECT_FALSE(lock.lock());
}

TEST(EcAccessLockTest, TheScopeGivesBackOnlyWhatItHolds)
{
    {
        const EcAccess access;
        EXPECT_TRUE(static_cast<bool>(access));
        EXPECT_TRUE(ecAccessMutex.isLocked());
    }
    EXPECT_FALSE(ecAccessMutex.isLocked());
    ASSERT_TRUE(ecAccessMutex.lock());
    ecAccessMutex.releaseWaiters();
    {
        const EcAccess access;
        EXPECT_FALSE(static_cast<bool>(access));
    }
    EXPECT_TRUE(ecAccessMutex.isLocked());
}
