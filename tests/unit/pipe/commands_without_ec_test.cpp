#include "command_fixture.h"
#include "platform/paths.h"
#include "support/reply_rules.h"

#include <QJsonDocument>

using tarn::CommandEntry;
using tarnDeviceInfos::ecAccessMutex;

namespace {

// Only powerModeControl pauses after an attempt that failed: once at the client's start, five times at its
// end.
int pausesFor(const CommandEntry &command, const QString &data)
{
    if (command.name != QLatin1String("powerModeControl"))
        return 0;
    if (data == "first")
        return 10;
    return data == "last" ? 5 * 50 : 0;
}

} // namespace

// The process ends, so that the EC is not to be had any more.
class CommandsWithoutEc : public tarnTest::CommandTest, public ::testing::WithParamInterface<CommandEntry>
{
protected:
    // With every data that the command takes.
    void askAll()
    {
        for (const QString &data : tarnTest::goodData(GetParam())) {
            const QByteArray request = tarnTest::requestOf(GetParam(), data);
            forgetPast();
            const QString reply = server->dispatch(request);
            const QString fault =
                tarnTest::faultOfReplyWithoutEc(QJsonDocument::fromJson(request).object(), reply);
            EXPECT_EQ(fault, QString()) << request.toStdString() << ": " << reply.toStdString();
            EXPECT_EQ(machine.traffic(), QStringList()) << request.toStdString();
            EXPECT_EQ(elapsed(), pausesFor(GetParam(), data)) << request.toStdString();
        }
    }
};

INSTANTIATE_TEST_SUITE_P(
    Of, CommandsWithoutEc, ::testing::ValuesIn(tarnTest::commandsThatNeedTheEc(true)), tarnTest::commandName);

TEST_P(CommandsWithoutEc, AreAnsweredAtOnceWithAFailure)
{
    ecAccessMutex.releaseWaiters();
    askAll();
    EXPECT_FALSE(ecAccessMutex.isLocked());
    EXPECT_FALSE(QFile::exists(tarnPlatform::path::savedPowerProfile));
    EXPECT_FALSE(QFile::exists(tarnPlatform::path::savedGraphicsColour));
}

// The present holder keeps the EC; the command neither waits for it nor lets it go.
TEST_P(CommandsWithoutEc, LeaveTheHoldOfAnother)
{
    ASSERT_TRUE(ecAccessMutex.lock());
    ecAccessMutex.releaseWaiters();
    askAll();
    EXPECT_TRUE(ecAccessMutex.isLocked());
}
