#include "platform/process_wide.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using tarnPlatform::ProcessWide;

namespace {

// An object that does something while it is made, and counts how often that happens.
struct Counted
{
    Counted()
    {
        ++made;
        if (const auto action = std::exchange(onCreation, nullptr))
            action();
    }
    static inline std::atomic<int> made {0};
    static inline std::function<void()> onCreation;
};

// Whether the kernel shows the thread's state as S, sleeping.
bool isAsleep(pid_t thread)
{
    QFile stat(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray fields = stat.readAll();
    return fields.mid(fields.lastIndexOf(')') + 2).startsWith('S');
}

} // namespace

TEST(ProcessWide, MakesItsObjectAtTheFirstUseAndKeepsIt)
{
    EXPECT_EQ(ProcessWide<Counted>::existing(), nullptr);
    Counted *object = ProcessWide<Counted>::instance();
    EXPECT_EQ(ProcessWide<Counted>::instance(), object);
    EXPECT_EQ(ProcessWide<Counted>::existing(), object);
    EXPECT_EQ(Counted::made, 1);
}

// The second thread asks while the first is still making the object, and gets that one.
TEST(ProcessWide, MakesOneObjectForTwoThreadsThatAskAtTheSameTime)
{
    Counted *ofSecond = nullptr;
    std::atomic<pid_t> second {0};
    std::thread thread;
    Counted::onCreation = [&] {
        thread = std::thread([&] {
            second = static_cast<pid_t>(::syscall(SYS_gettid));
            ofSecond = ProcessWide<Counted>::instance();
        });
        const QDeadlineTimer timeout(10000);
        while ((second == 0 || !isAsleep(second)) && !timeout.hasExpired())
            std::this_thread::yield();
        EXPECT_FALSE(timeout.hasExpired());
    };
    Counted *ofFirst = ProcessWide<Counted>::instance();
    thread.join();
    EXPECT_EQ(ofSecond, ofFirst);
    EXPECT_EQ(Counted::made, 1);
}

TEST(ProcessWide, TakesAStandInThatComesFirst)
{
    Counted standIn;
    ProcessWide<Counted>::adopt(&standIn);
    EXPECT_EQ(ProcessWide<Counted>::instance(), &standIn);
    EXPECT_EQ(Counted::made, 1);
}
