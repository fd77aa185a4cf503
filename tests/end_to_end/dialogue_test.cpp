#include "end_to_end/running_service.h"

#include "device/ec_registers.h"
#include "support/time_bound.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnTest::ServiceClient;

using Dialogue = tarnTest::RunningService;

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
