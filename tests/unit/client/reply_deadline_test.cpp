#include "client/reply_deadline.h"
#include "support/pipe_peer.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using tarn::ReplyDeadline;

namespace {

constexpr int patienceMs = 20000;

class ReplyDeadlineTest : public ::testing::Test
{
protected:
    ReplyDeadlineTest()
    {
        QObject::connect(&deadline, &ReplyDeadline::expired, &deadline, [this] { ++expiries; });
        time.start();
    }

    [[nodiscard]] bool expires()
    {
        return tarnTest::waitUntil([this] { return expiries > 0; }, patienceMs);
    }

    ReplyDeadline deadline;
    QElapsedTimer time;
    int expiries = 0;
};

} // namespace

TEST_F(ReplyDeadlineTest, ExpiresOnceAfterItsTime)
{
    deadline.start(milliseconds(50));
    EXPECT_TRUE(expires());
    EXPECT_GE(time.elapsed(), 50);
    EXPECT_EQ(deadline.timeout(), milliseconds(50));
    EXPECT_FALSE(tarnTest::waitUntil([this] { return expiries > 1; }, 200));
}

TEST_F(ReplyDeadlineTest, EachMessageExtendsIt)
{
    deadline.start(milliseconds(50));
    deadline.extend();
    EXPECT_TRUE(expires());
    EXPECT_GE(time.elapsed(), 650);
    EXPECT_EQ(deadline.timeout(), milliseconds(50));
}

TEST_F(ReplyDeadlineTest, DoesNotBeginByAMessage)
{
    deadline.start(milliseconds(50));
    deadline.stop();
    deadline.extend();
    EXPECT_FALSE(tarnTest::waitUntil([this] { return expiries > 0; }, 800));
}

TEST_F(ReplyDeadlineTest, LetsABusyThreadReadFirst)
{
    deadline.start(milliseconds(20));
    QThread::msleep(300);
    QCoreApplication::processEvents();
    EXPECT_EQ(expiries, 0);
    EXPECT_TRUE(expires());
}

TEST(DurationTextTest, IsInTheUnitThatReadsBest)
{
    EXPECT_EQ(tarn::durationText(seconds(30)), "30 s");
    EXPECT_EQ(tarn::durationText(milliseconds(200)), "0.2 s");
    EXPECT_EQ(tarn::durationText(seconds(60)), "60 s");
    EXPECT_EQ(tarn::durationText(minutes(15)), "15 min");
}
