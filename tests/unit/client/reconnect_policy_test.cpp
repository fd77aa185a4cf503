#include "client/reconnect_policy.h"

#include <gtest/gtest.h>

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using tarn::ClientTimes;
using tarn::ReconnectPolicy;

TEST(ReconnectPolicyTest, PausesGrowWhileAttemptsFail)
{
    ReconnectPolicy policy {ClientTimes()};
    EXPECT_EQ(policy.pauseAfterFailure(), milliseconds(1000));
    EXPECT_EQ(policy.pauseAfterFailure(), milliseconds(1500));
    EXPECT_EQ(policy.pauseAfterFailure(), milliseconds(2250));
    for (int i = 0; i < 10; ++i)
        EXPECT_LE(policy.pauseAfterFailure(), seconds(10));
    EXPECT_EQ(policy.pauseAfterFailure(), seconds(10));
    policy.noteAnswer();
    EXPECT_EQ(policy.pauseAfterFailure(), seconds(1));
    policy.forget();
    EXPECT_EQ(policy.pauseAfterFailure(), seconds(1));
}

TEST(ReconnectPolicyTest, TheThirdSilenceInARowIsATakeOver)
{
    ReconnectPolicy policy {ClientTimes()};
    EXPECT_EQ(policy.pauseAfterSilence(seconds(10)), milliseconds(800));
    policy.noteAnswer();
    EXPECT_EQ(policy.pauseAfterSilence(seconds(150)), milliseconds(800));
    policy.noteAnswer();
    EXPECT_FALSE(policy.isTakenOver());
    EXPECT_EQ(policy.pauseAfterSilence(seconds(290)), minutes(1));
    EXPECT_TRUE(policy.isTakenOver());
    policy.noteAnswer();
    EXPECT_FALSE(policy.isTakenOver());
    // It goes on as before: the other client is still there.
    EXPECT_EQ(policy.pauseAfterSilence(seconds(420)), minutes(1));
    EXPECT_TRUE(policy.isTakenOver());
}

TEST(ReconnectPolicyTest, SilencesFarApartDoNotCountTogether)
{
    ReconnectPolicy policy {ClientTimes()};
    for (int i = 1; i < 10; ++i) {
        EXPECT_EQ(policy.pauseAfterSilence(minutes(6 * i)), milliseconds(800)) << i;
        EXPECT_FALSE(policy.isTakenOver()) << i;
    }
}

TEST(ReconnectPolicyTest, TheApplicationBeginsAnew)
{
    ReconnectPolicy policy {ClientTimes()};
    for (int i = 0; i < 3; ++i)
        static_cast<void>(policy.pauseAfterSilence(seconds(i)));
    EXPECT_TRUE(policy.isTakenOver());
    policy.forget();
    EXPECT_FALSE(policy.isTakenOver());
    EXPECT_EQ(policy.pauseAfterSilence(seconds(4)), milliseconds(800));
}

TEST(ReconnectPolicyTest, NobodyTakesOverAServiceThatIsNotThere)
{
    ReconnectPolicy policy {ClientTimes()};
    for (int i = 0; i < 3; ++i)
        static_cast<void>(policy.pauseAfterSilence(seconds(i)));
    EXPECT_EQ(policy.pauseAfterFailure(), seconds(1));
    EXPECT_FALSE(policy.isTakenOver());
}
