#include "device/ec_access_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace tarnDeviceInfos;

namespace {

// Until so many threads wait for the lock.
void awaitWaiters(const EcAccessLock &lock, std::size_t count)
{
    while (lock.waiterCount() < count)
        std::this_thread::yield();
}

} // namespace

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

TEST(EcAccessLockTest, ServesInTheOrderOfAsking)
{
    EcAccessLock lock;
    ASSERT_TRUE(lock.lock());
    std::vector<std::size_t> order;
    std::vector<std::thread> threads;
    for (std::size_t place = 0; place < 20; ++place) {
        threads.emplace_back([&lock, &order, place] {
            ASSERT_TRUE(lock.lock());
            order.push_back(place);
            lock.unlock();
        });
        awaitWaiters(lock, place + 1);
    }
    lock.unlock();
    for (auto &thread : threads)
        thread.join();
    ASSERT_EQ(order.size(), 20U);
    for (std::size_t place = 0; place < order.size(); ++place)
        EXPECT_EQ(order[place], place);
    EXPECT_FALSE(lock.isLocked());
}

TEST(EcAccessLockTest, WhoComesAgainWaitsBehindThoseThatWaitAlready)
{
    EcAccessLock lock;
    ASSERT_TRUE(lock.lock());
    bool hasServedTheOther = false;
    std::thread other([&] {
        ASSERT_TRUE(lock.lock());
        hasServedTheOther = true;
        lock.unlock();
    });
    awaitWaiters(lock, 1);
    lock.unlock();
    EXPECT_TRUE(lock.lock());
    EXPECT_TRUE(hasServedTheOther);
    lock.unlock();
    other.join();
}

TEST(EcAccessLockTest, StaysTakenWhileItIsHandedOn)
{
    EcAccessLock lock;
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(lock.lock());
        std::atomic<bool> mayEnd {false};
        std::thread other([&] {
            ASSERT_TRUE(lock.lock());
            while (!mayEnd)
                std::this_thread::yield();
            lock.unlock();
        });
        awaitWaiters(lock, 1);
        lock.unlock();
        EXPECT_TRUE(lock.isLocked());
        mayEnd = true;
        other.join();
        EXPECT_FALSE(lock.isLocked());
    }
}

// Whoever is served and released at the same time, the lock is left free.
TEST(EcAccessLockTest, IsFreeAfterTheEndWhoeverWasServedLast)
{
    for (int round = 0; round < 500; ++round) {
        EcAccessLock lock;
        ASSERT_TRUE(lock.lock());
        std::thread waiter([&lock] {
            if (lock.lock())
                lock.unlock();
        });
        awaitWaiters(lock, 1);
        std::thread releaser([&lock] { lock.releaseWaiters(); });
        lock.unlock();
        releaser.join();
        waiter.join();
        EXPECT_FALSE(lock.isLocked());
        EXPECT_EQ(lock.waiterCount(), 0U);
        EXPECT_FALSE(lock.lock());
    }
}

TEST(EcAccessLockTest, ReleasesItsWaitersForTheEnd)
{
    EcAccessLock lock;
    ASSERT_TRUE(lock.lock());
    std::atomic<int> failed {0};
    std::vector<std::thread> waiters;
    for (int waiter = 0; waiter < 3; ++waiter)
        waiters.emplace_back([&] { failed += lock.lock() ? 0 : 1; });
    awaitWaiters(lock, 3);
    lock.releaseWaiters();
    for (auto &waiter : waiters)
        waiter.join();
    EXPECT_EQ(failed, 3);
    EXPECT_EQ(lock.waiterCount(), 0U);
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
