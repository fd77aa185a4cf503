#include "ec_host.h"

#include <gtest/gtest.h>

using namespace tarnDeviceInfos;
using tarnSimulator::Colour;
using tarnSimulatorTest::EcHost;

namespace {

void attachCode(EcHost &host, std::uint8_t code)
{
    host.computer.attach(*tarnSimulator::findAccessory(code));
}

void writeColourBytes(EcHost &host, Colour colour)
{
    ASSERT_TRUE(host.write(XEC_RGB_RED, colour.red));
    ASSERT_TRUE(host.write(XEC_RGB_GREEN, colour.green));
    ASSERT_TRUE(host.write(XEC_RGB_BLUE, colour.blue));
}

void expectColourBytes(EcHost &host, Colour colour)
{
    EXPECT_EQ(host.read(XEC_RGB_RED), colour.red);
    EXPECT_EQ(host.read(XEC_RGB_GREEN), colour.green);
    EXPECT_EQ(host.read(XEC_RGB_BLUE), colour.blue);
}

// Hands a command over and waits as long as the service does.
void command(EcHost &host, std::uint8_t code)
{
    ASSERT_TRUE(host.write(XEC_RGB_CMD, code));
    host.nowMs += 10;
}

constexpr Colour someColour {230, 0, 18};
constexpr Colour otherColour {30, 149, 212};

} // namespace

TEST(SimulatedMailbox, AnswersWithinTenMillisecondsByDefault)
{
    EcHost host;
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_READ));
    EXPECT_EQ(host.read(XEC_RGB_CMD), APP_EC_RGB_READ);
    host.nowMs += 10;
    EXPECT_EQ(host.read(XEC_RGB_CMD), 0);
}

TEST(SimulatedMailbox, UnknownCommandIsClearedWithoutEffect)
{
    EcHost host;
    attachCode(host, ACCESSORY_DOCK);
    writeColourBytes(host, someColour);
    ASSERT_TRUE(host.write(XEC_RGB_CMD, 0x7F));
    host.nowMs += 10;
    EXPECT_EQ(host.read(XEC_RGB_CMD), 0);
    EXPECT_EQ(host.computer.dockLight(), (Colour {1, 0, 0}));
    expectColourBytes(host, someColour);
}

TEST(SimulatedMailbox, EachAccessoryHasItsOwnLight)
{
    struct
    {
        std::uint8_t code;
        std::uint8_t linkStatus;
        Colour loaded;
        Colour dock;
        Colour graphics;
    } const rows[] = {
        {ACCESSORY_DOCK, MCU_LINKED, {1, 1, 1}, otherColour, {2, 2, 2}},
        {ACCESSORY_DOCK, 3, {0, 0, 0}, {1, 1, 1}, {2, 2, 2}}, // out of reach
        {ACCESSORY_GRAPHICS, MCU_LINKED, {2, 2, 2}, {1, 1, 1}, otherColour},
        {ACCESSORY_GRAPHICS_16G, MCU_LINKED, {2, 2, 2}, {1, 1, 1}, otherColour},
        {ACCESSORY_KVANE, MCU_LINKED, {0, 0, 0}, {1, 1, 1}, {2, 2, 2}},
    };
    for (const auto &row : rows) {
        EcHost host;
        host.computer.setDockLight({1, 1, 1});
        host.computer.setGraphicsLight({2, 2, 2});
        attachCode(host, row.code);
        host.computer.setLinkStatus(row.linkStatus);
        command(host, APP_EC_RGB_READ);
        expectColourBytes(host, row.loaded);
        writeColourBytes(host, otherColour);
        ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_WRITE));
        EXPECT_EQ(host.computer.dockLight(), row.dock) << int(row.code);
        EXPECT_EQ(host.computer.graphicsLight(), row.graphics) << int(row.code);
    }
}

TEST(SimulatedMailbox, WithoutALightTheColourIsBlackAndNothingIsApplied)
{
    EcHost host;
    writeColourBytes(host, someColour);
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_WRITE));
    EXPECT_EQ(host.computer.dockLight(), (Colour {1, 0, 0}));
    EXPECT_EQ(host.computer.graphicsLight(), (Colour {255, 255, 255}));

    command(host, APP_EC_RGB_READ);
    expectColourBytes(host, {0, 0, 0});
}

TEST(SimulatedMailbox, AcceptsACommandWhileTheLastIsStillThere)
{
    EcHost host;
    host.computer.timing().mailboxBusyMs.store(1000);
    attachCode(host, ACCESSORY_DOCK);
    writeColourBytes(host, someColour);
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_WRITE));
    host.nowMs += 900;
    ASSERT_TRUE(host.write(XEC_RGB_RED, 0));
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_READ));
    host.nowMs += 900; // the time of the first command is over, that of the second is not
    EXPECT_EQ(host.read(XEC_RGB_CMD), APP_EC_RGB_READ);
    EXPECT_EQ(host.read(XEC_RGB_RED), 0);
    host.nowMs += 100;
    EXPECT_EQ(host.read(XEC_RGB_CMD), 0);
    EXPECT_EQ(host.read(XEC_RGB_RED), someColour.red);
}

// A host that looks at the data before the command byte is clear gets what was there before.
TEST(SimulatedMailbox, AnswersWhenTheCommandByteClearsAndNotBefore)
{
    EcHost host;
    host.computer.timing().mailboxBusyMs.store(40);
    host.computer.setKvaneSerialNumber({0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x0A});
    host.computer.setKvaneLed(5);
    host.computer.setDockLight({5, 0x22, 0x33});
    const std::pair<std::uint8_t, std::uint8_t> commands[] = {{ACCESSORY_DOCK, APP_EC_RGB_READ},
        {ACCESSORY_KVANE, APP_EC_KVANE_SN_READ}, {ACCESSORY_KVANE, APP_EC_KVANE_LED_READ}};
    for (const auto &[accessory, code] : commands) {
        attachCode(host, accessory);
        ASSERT_TRUE(host.write(XEC_RGB_RED, 0xEE));
        ASSERT_TRUE(host.write(XEC_RGB_CMD, code));
        host.nowMs += 39;
        EXPECT_EQ(host.read(XEC_RGB_RED), 0xEE) << int(code);
        EXPECT_EQ(host.read(XEC_RGB_CMD), code);
        host.nowMs += 1;
        EXPECT_EQ(host.read(XEC_RGB_RED), code == APP_EC_KVANE_SN_READ ? 0x11 : 5) << int(code);
        EXPECT_EQ(host.read(XEC_RGB_CMD), 0);
    }
}

TEST(SimulatedMailbox, ACommandThatIsReplacedLeavesNoAnswer)
{
    EcHost host;
    host.computer.timing().mailboxBusyMs.store(1000);
    host.computer.setKvaneLed(5);
    attachCode(host, ACCESSORY_KVANE);
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_KVANE_LED_READ));
    ASSERT_TRUE(host.write(XEC_RGB_RED, 9));
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_KVANE_LED_WRITE));
    EXPECT_EQ(host.computer.kvaneLed(), 9);
    host.computer.setKvaneLed(7);
    host.nowMs += 2000;
    EXPECT_EQ(host.read(XEC_RGB_RED), 9);

    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_KVANE_LED_READ));
    ASSERT_TRUE(host.write(XEC_RGB_CMD, 0));
    host.nowMs += 2000;
    EXPECT_EQ(host.read(XEC_RGB_RED), 9);
}

// Neither with another accessory nor behind a link that is down.
TEST(SimulatedMailbox, WithoutAKvaneThereIsNoSerialNumberAndNoLed)
{
    for (const int code : {ACCESSORY_NONE, ACCESSORY_DOCK, ACCESSORY_GRAPHICS, ACCESSORY_KVANE}) {
        EcHost host;
        host.computer.setKvaneLed(5);
        if (code != ACCESSORY_NONE) {
            attachCode(host, static_cast<std::uint8_t>(code));
            host.computer.setLinkStatus(code == ACCESSORY_KVANE ? 3 : MCU_LINKED);
        }
        ASSERT_TRUE(host.write(XEC_RGB_RED, 9));
        command(host, APP_EC_KVANE_LED_WRITE);
        EXPECT_EQ(host.computer.kvaneLed(), 5) << code;
        command(host, APP_EC_KVANE_LED_READ);
        EXPECT_EQ(host.read(XEC_RGB_RED), 0) << code;

        ASSERT_TRUE(host.write(XEC_RGB_RED, 9));
        command(host, APP_EC_KVANE_SN_READ);
        for (std::uint16_t i = 0; i < KVANE_SN_LENGTH; ++i)
            EXPECT_EQ(host.read(static_cast<std::uint16_t>(KVANE_SN_BYTES + i)), 0) << code;
    }
}

TEST(SimulatedMailbox, KeepsAndCountsGpuStateReports)
{
    constexpr std::uint8_t notStarted = GPU_PRESENT | GPU_DRIVER_INSTALLED;
    constexpr std::uint8_t active = notStarted | GPU_STARTED;
    EcHost host;
    EXPECT_EQ(host.computer.gpuReports().count, 0U);
    ASSERT_TRUE(host.write(XEC_APP_CMD_DATA0, active));
    EXPECT_EQ(host.computer.gpuReports().count, 0U);
    ASSERT_TRUE(host.write(XEC_APP_CMD, APP_CMD_PEG_STATE));
    EXPECT_EQ(host.computer.gpuReports().count, 1U);
    EXPECT_EQ(host.computer.gpuReports().gpuDriverData, active);

    ASSERT_TRUE(host.write(XEC_APP_CMD_DATA0, notStarted));
    ASSERT_TRUE(host.write(XEC_APP_CMD, APP_CMD_PEG_STATE));
    EXPECT_EQ(host.computer.gpuReports().count, 2U);
    EXPECT_EQ(host.computer.gpuReports().gpuDriverData, notStarted);
}

TEST(SimulatedMailbox, StuckFaultExecutesButNeverClears)
{
    EcHost host;
    host.computer.faults().switchOn(tarnSimulator::Fault::MailboxStuck);
    host.computer.setDockLight(someColour);
    attachCode(host, ACCESSORY_DOCK);
    ASSERT_TRUE(host.write(XEC_RGB_CMD, APP_EC_RGB_READ));
    host.nowMs += 100000;
    EXPECT_EQ(host.read(XEC_RGB_CMD), APP_EC_RGB_READ);
    EXPECT_EQ(host.read(XEC_RGB_RED), someColour.red);
    // Once: what is there since then stays.
    ASSERT_TRUE(host.write(XEC_RGB_RED, 0xEE));
    EXPECT_EQ(host.read(XEC_RGB_RED), 0xEE);

    host.computer.faults().switchOff(tarnSimulator::Fault::MailboxStuck);
    EXPECT_EQ(host.read(XEC_RGB_CMD), 0);
}
