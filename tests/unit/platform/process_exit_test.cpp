#include "platform/process_end.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

using tarnPlatform::exitAtOnce;

namespace {

std::mutex neededByTheEnd;

void waitForIt()
{
    const std::scoped_lock lock(neededByTheEnd);
    std::fputs("an orderly end\n", stderr);
}

} // namespace

TEST(ProcessExit, LeavesWithTheCodeAndWithoutTheStepsOfAnOrderlyEnd)
{
    EXPECT_EXIT(
        {
            std::atexit([] { std::fputs("an orderly end\n", stderr); });
            exitAtOnce(5);
        },
        ::testing::ExitedWithCode(5), "^$");
}

// A lock that an orderly exit needs may be held by a thread that never releases it.
TEST(ProcessExit, WaitsForNoThread)
{
    EXPECT_EXIT(
        {
            std::atexit(waitForIt);
            const std::scoped_lock lock(neededByTheEnd);
            std::thread([] { exitAtOnce(0); }).join();
        },
        ::testing::ExitedWithCode(0), "^$");
}
