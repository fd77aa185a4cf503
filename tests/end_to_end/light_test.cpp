#include "end_to_end/running_service.h"

#include "device/ec_registers.h"

using namespace tarnDeviceInfos;

using Lights = tarnTest::RunningService;

TEST_F(Lights, SwitchTheDock)
{
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "dock"));
    EXPECT_EQ(client.answer("setDockLedStatus", "on"), "successed");
    EXPECT_EQ(client.answer("getDockLedStatus"), "on");
    EXPECT_EQ(service.computer().dockLight().red, 1);
    EXPECT_EQ(client.answer("setDockLedStatus", "off"), "successed");
    EXPECT_EQ(client.answer("getDockLedStatus"), "off");
    EXPECT_EQ(client.answer("setDockLedStatus", "ON"), "failed");
    EXPECT_EQ(client.answer("setDockLedStatus", "1"), "failed");
    EXPECT_EQ(client.answer("setDockLedStatus"), "failed");
    EXPECT_EQ(client.answer("getDockLedStatus"), "off");
}

TEST_F(Lights, OfTheDockSurviveFaults)
{
    service.attach(ACCESSORY_DOCK);
    ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "dock"));
    EXPECT_EQ(client.answer("setDockLedStatus", "on"), "successed");

    // A mailbox that never clears: the light is read all the same.
    service.breakDown("mailbox-stuck");
    EXPECT_NE(client.answer("getDockLedStatus"), "(no reply)");
    service.repair();
    EXPECT_EQ(client.answer("getDockLedStatus"), "on");

    service.breakDown("fail-register", XEC_RGB_GREEN);
    EXPECT_EQ(client.answer("setDockLedStatus", "off"), "failed");
    service.repair();
    EXPECT_EQ(client.answer("getDockLedStatus"), "on"); // the command never reached the light

    service.breakDown("fail-register", XEC_RGB_RED);
    EXPECT_EQ(client.answer("getDockLedStatus"), "unknown");
    EXPECT_TRUE(service.log().contains("Get unknown dock led status:  -2"));
    service.repair();
    EXPECT_EQ(client.answer("setDockLedStatus", "off"), "successed");
    EXPECT_EQ(client.answer("getDockLedStatus"), "off");
}

TEST_F(Lights, AndSerialNumberOfTheKVane)
{
    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "k_vane"));
    service.computer().setKvaneSerialNumber({0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0x0D});
    EXPECT_EQ(client.answer("getTarnKvaneSnCode"), "0DAB8967452301");

    EXPECT_EQ(client.ask({{"cmd", "setKVaneLedLight"}, {"data", "9"}}),
        (QJsonObject {{"cmd", "setKVaneLedLight"}, {"data", "9"}}));
    EXPECT_EQ(service.computer().kvaneLed(), 9);
    EXPECT_TRUE(client.waitForNotification("getKVaneLedLight", "9"));
    EXPECT_EQ(client.answer("getKVaneLedLight"), "9");

    EXPECT_EQ(client.answer("setKVaneLedLight", "abc"), "");
    EXPECT_EQ(service.computer().kvaneLed(), 0);
}

TEST_F(Lights, OfTheKVaneSurviveFaults)
{
    service.attach(ACCESSORY_KVANE);
    ASSERT_TRUE(client.waitForNotification("changeAccessoryType", "k_vane"));
    service.computer().setKvaneLed(4);
    EXPECT_TRUE(client.waitForNotification("getKVaneLedLight", "4"));
    service.breakDown("fail-read", KVANE_SN_BYTES + 4);
    EXPECT_EQ(client.answer("getTarnKvaneSnCode"), "default");
    EXPECT_TRUE(service.log().contains("read kvane sn code 5 from xdata failed."));
    service.repair();
    EXPECT_EQ(client.answer("getTarnKvaneSnCode").size(), 14);

    service.breakDown("fail-register", XEC_RGB_RED);
    EXPECT_TRUE(client.waitForNotification("getKVaneLedLight", "-1"));
    EXPECT_EQ(client.answer("setKVaneLedLight", "7"), "");
    EXPECT_TRUE(service.log().contains("begin to set kvane led light failed."));
    service.repair();
    EXPECT_EQ(client.answer("setKVaneLedLight", "7"), "");
    EXPECT_EQ(service.computer().kvaneLed(), 7);
}
