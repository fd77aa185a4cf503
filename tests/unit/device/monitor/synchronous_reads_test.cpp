#include "device/monitor/ec_dirver_reader.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "support/simulated_machine.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;
using tarnTest::milliseconds;

class SynchronousReads : public tarnTest::MachineTest
{
protected:
    SynchronousReads()
    {
        EcDirverControllerHal::instance();
        reader = EcDirverReader::instance();
        machine.log.clear();
    }

    void setMcuVersion(int major, int minor, int patch)
    {
        machine.state->xdata[MCU_VERSION_MAJOR] = static_cast<std::uint8_t>(major);
        machine.state->xdata[MCU_VERSION_MINOR] = static_cast<std::uint8_t>(minor);
        machine.state->xdata[MCU_VERSION_PATCH] = static_cast<std::uint8_t>(patch);
    }

    EcDirverReader *reader;
    QString text = "before:";
};

TEST_F(SynchronousReads, AppendTheAccessoryCode)
{
    machine.state->xdata[ACCESSORY_CODE] = 203;
    EXPECT_EQ(&reader->getAccessoryCode(text), &text);
    EXPECT_EQ(text, "before:203");
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 06A6 CB"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"Accessory Code is:  \"before:203\""}));
}

TEST_F(SynchronousReads, AppendTheHardwareVersion)
{
    machine.state->xdata[HARDWARE_VERSION] = 7;
    EXPECT_EQ(&reader->getHardwareVersion(text), &text);
    EXPECT_EQ(text, "before:7");
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 06A7 07"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"Hardware Version is:  \"before:7\""}));
}

TEST_F(SynchronousReads, AppendTheMcuVersionWithOneDot)
{
    setMcuVersion(1, 2, 3);
    EXPECT_EQ(&reader->getMcuVersion(text), &text);
    EXPECT_EQ(text, "before:1.23");
    EXPECT_EQ(machine.timeline(), QStringList({"20 R 06C2 01", "90 R 06A4 02", "160 R 06A5 03"}));
    EXPECT_EQ(machine.log.lines(), QStringList({"Mcu Version is:  \"before:1.23\""}));
}

TEST_F(SynchronousReads, JoinMinorAndPatchOfAnyLength)
{
    const std::tuple<int, int, int, const char *> versions[] = {
        {2, 0, 5, "2.05"}, {2, 10, 0, "2.100"}, {255, 255, 255, "255.255255"}};
    for (const auto &[major, minor, patch, expected] : versions) {
        setMcuVersion(major, minor, patch);
        QString version;
        EXPECT_EQ(reader->getMcuVersion(version), expected);
    }
}

TEST_F(SynchronousReads, LeaveTheTextAloneWhenAnyReadFails)
{
    const quint16 failing[] = {
        ACCESSORY_CODE, HARDWARE_VERSION, MCU_VERSION_MAJOR, MCU_VERSION_MINOR, MCU_VERSION_PATCH};
    for (const quint16 address : failing) {
        machine.faults().switchOn(Fault::FailRead, address);
        if (address == ACCESSORY_CODE)
            reader->getAccessoryCode(text);
        else if (address == HARDWARE_VERSION)
            reader->getHardwareVersion(text);
        else
            reader->getMcuVersion(text);
        EXPECT_EQ(text, "before:") << address;
        EXPECT_FALSE(ecAccessMutex.isLocked());
    }
    EXPECT_TRUE(machine.log.lines().filter(" is: ").isEmpty());
}

TEST_F(SynchronousReads, StopAtTheFirstFailingField)
{
    machine.faults().switchOn(Fault::FailRead, MCU_VERSION_MINOR);
    reader->getMcuVersion(text);
    EXPECT_TRUE(machine.traffic().filter("06A5").isEmpty());
}

TEST_F(SynchronousReads, TellTheHandShake)
{
    machine.state->xdata[MCU_LINK_STATUS] = 4;
    EXPECT_EQ(reader->getHandShakeStatus(), 4);
    EXPECT_EQ(machine.log.lines(), QStringList({"get hank shake status successful!"}));
    machine.log.clear();

    machine.faults().switchOn(Fault::FailRead, MCU_LINK_STATUS);
    EXPECT_EQ(reader->getHandShakeStatus(), 255);
    EXPECT_EQ(machine.log.lines().last(), "get hank shake status failed!");
}

TEST_F(SynchronousReads, HoldTheEcAsLongAsTheyTalkToIt)
{
    const std::pair<const char *, std::function<void()>> reads[] = {
        {"accessory code",
            [this] {
                reader->getAccessoryCode(text);
            }},
        {"hardware version",
            [this] {
                reader->getHardwareVersion(text);
            }},
        {"MCU version",
            [this] {
                reader->getMcuVersion(text);
            }},
        {"hand shake",
            [this] {
                reader->getHandShakeStatus();
            }},
    };
    for (const auto &[name, read] : reads) {
        int waits = 0;
        int waitsWithoutTheEc = 0;
        machine.clock.onWait = [&](milliseconds) {
            ++waits;
            waitsWithoutTheEc += ecAccessMutex.isLocked() ? 0 : 1;
        };
        read();
        machine.clock.onWait = nullptr;
        EXPECT_GE(waits, 4) << name;
        EXPECT_EQ(waitsWithoutTheEc, 0) << name;
        EXPECT_FALSE(ecAccessMutex.isLocked()) << name;
    }
}

TEST_F(SynchronousReads, DoNothingOnceTheLockIsReleasedForTheEnd)
{
    ecAccessMutex.releaseWaiters();
    reader->getAccessoryCode(text);
    reader->getHardwareVersion(text);
    reader->getMcuVersion(text);
    EXPECT_EQ(reader->getHandShakeStatus(), 255);
    EXPECT_EQ(text, "before:");
    EXPECT_TRUE(machine.traffic().isEmpty());
}
