#include "end_to_end/running_service.h"

#include "device/ec_registers.h"
#include "support/time_bound.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;
using tarnTest::waitUntil;

using Dialogue = tarnTest::RunningService;

TEST_F(Dialogue, SurvivesWhateverArrives)
{
    const QByteArrayList rubbish = {
        QByteArray("\0\0\0", 3), QByteArray(8000, '{'), QByteArray(8000, 'a'), "\xff\xfe\xfd"};
    for (const QByteArray &bytes : rubbish) {
        const auto sent = service.logCount("\nsend");
        client.write(bytes);
        EXPECT_TRUE(waitUntil([&] { return service.logCount("\nsend") > sent; }, 20000))
            << bytes.left(50).toStdString();
    }
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
}

TEST_F(Dialogue, KeepsHalfASecondBetweenMessages)
{
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    EXPECT_GE(timer.elapsed(), 499);
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(3000));
}

TEST_F(Dialogue, KeepsNewsForTheNextClient)
{
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    client.leave();
    ASSERT_TRUE(service.waitForLog("send Thread is quit!"));
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(service.waitForLog("now Accessory is dock"));
    ServiceClient next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_TRUE(next.waitForNotification("changeAccessoryType", "dock"));
}

TEST_F(Dialogue, GivesTheLateReplyOfALeftClientToTheNext)
{
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    service.breakDown("ibf-stuck");
    client.write(R"({"cmd":"getAccessoryCode","from":"the first"})");
    ASSERT_TRUE(service.waitForLog("\"getAccessoryCode\""));
    client.leave();
    ASSERT_TRUE(service.waitForLog("send Thread is quit!"));
    service.repair();
    ServiceClient next;
    ASSERT_TRUE(next.connectToService());
    EXPECT_TRUE(waitUntil([&next] { return next.documents().join().contains("the first"); }, 30000));
}

struct FaultCase
{
    const char *fault;
    int value;
    const char *mcuVersion;
};

class DialogueWithFault : public Dialogue, public ::testing::WithParamInterface<FaultCase>
{ };

INSTANTIATE_TEST_SUITE_P(Faults, DialogueWithFault,
    ::testing::Values(FaultCase {"ibf-stuck", 0, ""}, FaultCase {"no-answer", 0, ""},
        FaultCase {"fail-read", MCU_VERSION_MINOR, ""}, FaultCase {"slow", 20, "1.23"}));

TEST_P(DialogueWithFault, AnswersAndIsWellAgainAfterwards)
{
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "dock"));
    service.computer().setMcuVersion(1, 2, 3);
    service.breakDown(GetParam().fault, GetParam().value);
    EXPECT_EQ(client.answer("getMcuVersion"), GetParam().mcuVersion);
    service.repair();
    EXPECT_EQ(client.answer("getMcuVersion"), "1.23");
    EXPECT_EQ(client.answer("getAccessoryType"), "dock");
}
