#include "accessory/dock_accessory_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "ec_stand_in.h"
#include "graphics/graphics_accessory_manager.h"
#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::DockAccessoryManager;
using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnAccessoryManager::KvaneAccessoryManager;

// A driver with results outside the known ones: everything but 0 is a failure.
class UnexpectedResults : public tarnTest::EcLockTest, public ::testing::WithParamInterface<int>
{
protected:
    UnexpectedResults()
        : ec(tarnTest::EcStandIn::install())
        , dock(DockAccessoryManager::instance())
        , graphics(GraphicsAccessoryManager::instance())
        , kvane(KvaneAccessoryManager::instance())
    {
        machine.attach(ACCESSORY_DOCK);
        machine.state->accessory.dockLight = 1 << 16;
        machine.log.clear();
    }

    void failReads(quint16 address) { ec->readResults = {{address, GetParam()}}; }
    void failWrites(quint16 address) { ec->writeResults = {{address, GetParam()}}; }

    tarnTest::EcStandIn *ec;
    DockAccessoryManager *dock;
    GraphicsAccessoryManager *graphics;
    KvaneAccessoryManager *kvane;
};

TEST_P(UnexpectedResults, OfAMailboxWriteEndTheExchange)
{
    for (const quint16 address : {XEC_RGB_RED, XEC_RGB_GREEN, XEC_RGB_BLUE, XEC_RGB_CMD}) {
        failWrites(address);
        EXPECT_EQ(dock->setDockLedStatus(0), -2) << address;
        EXPECT_TRUE(machine.log.lines().last().startsWith("W: Failed to write ")) << address;
        EXPECT_EQ(graphics->setGraphicsRgb(1), -2) << address;
        EXPECT_TRUE(machine.log.lines().last().startsWith("W: Failed to write ")) << address;
    }
    EXPECT_EQ(dock->getDockLedStatus(), -1);
    EXPECT_EQ(graphics->getGraphicsRgb(), -1);
}

TEST_P(UnexpectedResults, OfALookAtTheMailboxLeaveTheCommandUnfinished)
{
    failReads(XEC_RGB_CMD);
    EXPECT_EQ(dock->getDockLedStatus(), 1);
    EXPECT_EQ(machine.log.count("W: read ecRGBCmdDataDock from xdata failed."), 21);
    (void)graphics->getGraphicsRgb();
    EXPECT_EQ(machine.log.count("W: read ecRGBCmdData from xdata failed."), 11);
}

TEST_P(UnexpectedResults, OfAColourByteEndTheReading)
{
    failReads(XEC_RGB_RED);
    EXPECT_EQ(dock->getDockLedStatus(), -2);
    for (const quint16 address : {XEC_RGB_RED, XEC_RGB_GREEN, XEC_RGB_BLUE}) {
        failReads(address);
        EXPECT_EQ(graphics->getGraphicsRgb(), -2) << address;
    }
}

TEST_P(UnexpectedResults, OfTheSerialNumberMakeItDefault)
{
    failWrites(XEC_RGB_CMD);
    EXPECT_EQ(kvane->getKvaneSnCode(), "default");
    EXPECT_EQ(machine.log.lines().last(), "begin to read kvane sn code failed.");
    ec->writeResults.clear();
    for (quint16 address = KVANE_SN_BYTES; address < KVANE_SN_BYTES + KVANE_SN_LENGTH; ++address) {
        failReads(address);
        EXPECT_EQ(kvane->getKvaneSnCode(), "default") << address;
    }
}

TEST_P(UnexpectedResults, OfTheKvanesLedAreFailures)
{
    failWrites(XEC_RGB_RED);
    kvane->setKVaneLedLight(3);
    EXPECT_EQ(machine.log.lines().last(), "begin to set kvane led light failed.");
    failWrites(XEC_RGB_CMD);
    kvane->setKVaneLedLight(3);
    EXPECT_EQ(machine.log.lines().last(), "finish to set kvane led light failed.");
    EXPECT_EQ(kvane->getKVaneLedLight(), -1);
    ec->writeResults.clear();
    failReads(XEC_RGB_RED);
    EXPECT_EQ(kvane->getKVaneLedLight(), -1);
}

TEST_P(UnexpectedResults, OfThePlainReadersCountAsUnread)
{
    failReads(EC_KVANE_CHARGING_STATUS);
    EXPECT_EQ(kvane->getKvaneChargingStatus(), 0);
    failReads(EC_TARN_CHARGING_STATUS);
    EXPECT_EQ(kvane->getTarnChargingStatus(), 0);
    failReads(EC_KVANE_BATTERY_NUM);
    EXPECT_EQ(kvane->getKvaneBatteryNum(), 255);
    failReads(EC_TARN_BATTERY_NUM);
    EXPECT_EQ(kvane->getTarnBatteryNum(), 255);
}

INSTANTIATE_TEST_SUITE_P(Results, UnexpectedResults, ::testing::Values(-3, 1));
