#include "unit/panel/client/client_side_fixture.h"

using namespace panelTest;

namespace {

using IdentityPageTest = ClientSideTest;

} // namespace

TEST_F(IdentityPageTest, TellsWhatIsAttachedAndItsVersions)
{
    makeAndConnect(QStringLiteral("k_vane"));
    EXPECT_TRUE(text("accessory").startsWith(QStringLiteral("KVane, read")));
    EXPECT_TRUE(shows("hardwareVersion", QStringLiteral("3, read")));
    EXPECT_TRUE(shows("accessoryCode", QStringLiteral("1, read")));
    EXPECT_TRUE(shows("kvaneSerialNumber", QStringLiteral("0123456789ABCD, read")));
    EXPECT_TRUE(shows("battery", QStringLiteral("80 %, read")));
    EXPECT_TRUE(shows("charging", QStringLiteral("yes, read")));
    EXPECT_TRUE(shows("kvaneBattery", QStringLiteral("55 %, read")));
    EXPECT_TRUE(shows("kvaneCharging", QStringLiteral("no, or not readable, read")));
    service.notify(QStringLiteral("getKvaneBatteryNum"), QStringLiteral("54"));
    EXPECT_TRUE(shows("kvaneBattery", QStringLiteral("54 %, read")));
}

TEST_F(IdentityPageTest, KnowsNothingOfAKVaneThatIsGone)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneBattery", QStringLiteral("55 %")));
    service.values[QStringLiteral("getAccessoryType")] = QStringLiteral("disconnected");
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("disconnected"));
    EXPECT_TRUE(shows("accessory", QStringLiteral("nothing attached, read")));
    EXPECT_EQ(text("kvaneBattery"), QStringLiteral("unknown (no KVane is attached)"));
    EXPECT_EQ(text("mcuVersion"), QStringLiteral("unknown (nothing is attached)"));
    EXPECT_TRUE(text("battery").startsWith(QStringLiteral("80 %")));
}

TEST_F(IdentityPageTest, WhatTheServiceCannotReadIsUnknown)
{
    service.values[QStringLiteral("getTarnKvaneSnCode")] = QStringLiteral("default");
    service.values[QStringLiteral("getTarnBatteryNum")] = QStringLiteral("255");
    makeAndConnect(QStringLiteral("k_vane"));
    EXPECT_TRUE(shows("kvaneSerialNumber", QStringLiteral("unknown (the service could not read it)")));
    EXPECT_EQ(text("battery"), QStringLiteral("unknown"));
}

TEST_F(IdentityPageTest, DropsAnAnswerForAnAccessoryThatIsGone)
{
    makeAndConnect(QStringLiteral("k_vane"));
    service.silent << QStringLiteral("getMcuUpdateParameters");
    click("refresh");
    ASSERT_TRUE(becomes([this] { return service.count(QStringLiteral("getMcuUpdateParameters")) == 2; }));
    attach(QStringLiteral("disconnected"), QStringLiteral("nothing attached"));
    service.answerHeld();
    useAllAnswers();
    EXPECT_EQ(text("mcuVersion"), QStringLiteral("unknown (nothing is attached)"));
    EXPECT_EQ(text("hardwareVersion"), QStringLiteral("unknown (nothing is attached)"));
}

TEST_F(IdentityPageTest, AsksNothingMoreForAnAccessoryThatIsGone)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneSerialNumber", QStringLiteral("0123456789ABCD, read")));
    service.silent << QStringLiteral("getTarnPowerMode");
    click("refresh");
    ASSERT_TRUE(becomes([this] { return service.count(QStringLiteral("getTarnPowerMode")) == 2; }));
    attach(QStringLiteral("disconnected"), QStringLiteral("nothing attached"));
    service.answerHeld();
    // One after the other: this one is asked after all that waited.
    click("refresh");
    ASSERT_TRUE(becomes([this] { return service.count(QStringLiteral("getTarnPowerMode")) == 3; }));
    EXPECT_EQ(service.count(QStringLiteral("getMcuUpdateParameters")), 1);
    EXPECT_EQ(service.count(QStringLiteral("getTarnKvaneSnCode")), 1);
    EXPECT_EQ(text("kvaneSerialNumber"), QStringLiteral("unknown (no KVane is attached)"));
}

// Both boxes have the same name in the protocol.
TEST_F(IdentityPageTest, ReadsAnotherAccessoryOfTheSameKindToo)
{
    makeAndConnect(QStringLiteral("graphics"));
    ASSERT_TRUE(shows("graphicsLightStatus", QStringLiteral("cyan, read")));
    service.values[QStringLiteral("getMcuVersion")] = QStringLiteral("3.4.7");
    service.values[QStringLiteral("getGraphicsRGB")] = QStringLiteral("blue");
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("graphics"));
    EXPECT_TRUE(shows("mcuVersion", QStringLiteral("3.4.7")));
    EXPECT_TRUE(shows("graphicsLightStatus", QStringLiteral("blue, read")));
    EXPECT_EQ(session.rowCount(), 0);
}

// What the service told of the one before is no reading of this one.
TEST_F(IdentityPageTest, AsksForTheBatteryOfAKVaneThatIsAttached)
{
    makeAndConnect(QStringLiteral("k_vane"));
    ASSERT_TRUE(shows("kvaneBattery", QStringLiteral("55 %")));
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("disconnected"));
    ASSERT_TRUE(shows("kvaneBattery", QStringLiteral("no KVane is attached")));
    service.values[QStringLiteral("getKvaneBatteryNum")] = QStringLiteral("54");
    service.values[QStringLiteral("getKvaneChargingStatus")] = QStringLiteral("1");
    service.notify(QStringLiteral("changeAccessoryType"), QStringLiteral("k_vane"));
    EXPECT_TRUE(shows("kvaneBattery", QStringLiteral("54 %")));
    EXPECT_TRUE(shows("kvaneCharging", QStringLiteral("yes")));
}
