#include "platform/process_end.h"

#include "support/pipe_peer.h"

#include <QThread>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

using tarnPlatform::StopRequests;

namespace {

// The signals of the object so far.
class StopSpy : public QObject
{
public:
    StopSpy()
    {
        connect(&StopRequests::ofProcess(), &StopRequests::stopRequested, this, [this] {
            ++count;
            onOwnThread = QThread::currentThread() == thread();
        });
    }
    int count = 0;
    bool onOwnThread = false;
};

} // namespace

class StopRequestSignal : public ::testing::TestWithParam<int>
{ };

TEST_P(StopRequestSignal, IsToldAndEndsNothing)
{
    std::signal(GetParam(), SIG_DFL); // the process that started the tests may have set it to be ignored
    const StopSpy spy;
    EXPECT_FALSE(StopRequests::ofProcess().isRequested());
    errno = E2BIG;
    std::raise(GetParam());
    EXPECT_EQ(errno, E2BIG); // the handler must not change the errno of the interrupted code
    EXPECT_TRUE(StopRequests::ofProcess().isRequested());
    EXPECT_EQ(spy.count, 0); // before the event loop gets to it
    EXPECT_TRUE(tarnTest::waitUntil([&spy] { return spy.count > 0; }));
    EXPECT_TRUE(spy.onOwnThread);
    EXPECT_EQ(spy.count, 1);
}

INSTANTIATE_TEST_SUITE_P(All, StopRequestSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(StopRequestsOfProcess, AreToldAgainEachTime)
{
    const StopSpy spy;
    for (int time = 1; time <= 3; ++time) {
        std::raise(SIGTERM);
        EXPECT_TRUE(tarnTest::waitUntil([&] { return spy.count == time; }));
    }
    std::raise(SIGTERM);
    std::raise(SIGINT); // two signals before the event loop runs count as one
    EXPECT_TRUE(tarnTest::waitUntil([&spy] { return spy.count == 4; }));
}

// A process under nohup keeps running when its terminal closes.
TEST(StopRequestsOfProcess, LeaveAHangUpThatIsIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGINT, SIG_IGN); // as a shell does for what it starts in the background
    StopRequests::ofProcess();
    std::raise(SIGHUP);
    EXPECT_FALSE(StopRequests::ofProcess().isRequested());
    std::raise(SIGINT);
    EXPECT_TRUE(StopRequests::ofProcess().isRequested());
}
