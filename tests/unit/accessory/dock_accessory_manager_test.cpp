#include "accessory/dock_accessory_manager.h"

#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::DockAccessoryManager;
using tarnSimulator::Fault;

namespace {

const QStringList ledCommandWritten {
    "start to get dock led setting.", "Success to write APP_EC_RGB_READ:  17 to XEC_RGB_CMD."};
const QString ledMailboxPoll = "read ecRGBCmdDataDock from xdata until it is 0.";

QString ledMailboxValue(int value)
{
    return QString("read ecRGBCmdDataDock from xdata successed with:  %1").arg(value);
}

QStringList ledStateLines(int red, const char *meaning)
{
    return {QString("read rgbRedVerDock from xdata successed with:  %1").arg(red), meaning};
}

} // namespace

// The dock's LED on a dock that is attached and lit.
class DockLed : public tarnTest::EcLockTest
{
protected:
    DockLed()
        : manager(DockAccessoryManager::instance())
    {
        EcDirverControllerHal::instance();
        setRegister(MCU_LINK_STATUS, MCU_LINKED);
        setRegister(ACCESSORY_CODE, ACCESSORY_DOCK);
        machine.log.clear();
    }

    void setRed(int red) { machine.state->accessory.dockLight = static_cast<std::uint32_t>(red) << 16; }
    [[nodiscard]] int light() const { return static_cast<int>(machine.state->accessory.dockLight); }
    [[nodiscard]] int elapsed() const { return static_cast<int>(machine.clock.now().count()); }

    DockAccessoryManager *manager;
    static constexpr int linesBeforeState = 3; // of the log: the start, the command and the mailbox
};

TEST(DockAccessoryManagerObject, SaysThatItWasCreatedOnce)
{
    const tarnTest::LogCapture log;
    DockAccessoryManager *manager = DockAccessoryManager::instance();
    EXPECT_EQ(DockAccessoryManager::instance(), manager);
    EXPECT_EQ(log.lines(), QStringList({"DockAccessoryManager object is created."}));
}

TEST_F(DockLed, IsOn)
{
    EXPECT_EQ(manager->getDockLedStatus(), 1);
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04B0 11", "50 R 04B0 00", "80 R 04B1 01"}));
    EXPECT_EQ(elapsed(), 80);
    EXPECT_EQ(machine.log.lines(),
        ledCommandWritten + QStringList({ledMailboxValue(0)}) + ledStateLines(1, "dock led is on."));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DockLed, IsOff)
{
    setRed(0);
    EXPECT_EQ(manager->getDockLedStatus(), 0);
    EXPECT_EQ(machine.log.lines().mid(linesBeforeState), ledStateLines(0, "dock led is off."));
}

class DockLedUnknown : public DockLed, public ::testing::WithParamInterface<int>
{ };

TEST_P(DockLedUnknown, IsNeitherOnNorOff)
{
    setRed(GetParam());
    EXPECT_EQ(manager->getDockLedStatus(), -3);
    EXPECT_EQ(machine.log.lines().mid(linesBeforeState),
        ledStateLines(GetParam(), qPrintable(QString("unexpected rgbRedVerDock: %1").arg(GetParam()))));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Reds, DockLedUnknown, ::testing::Values(2, 0x11, 0xF0, 0xFF));

TEST_F(DockLed, ACommandThatCannotBeWrittenFails)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    EXPECT_EQ(manager->getDockLedStatus(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines(),
        QStringList(
            {"start to get dock led setting.", "W: Failed to write APP_EC_RGB_READ:  17 to XEC_RGB_CMD."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DockLed, AMailboxThatClearsLateIsPolled)
{
    machine.state->timing.mailboxBusyMs = 70; // from its command at 20 on
    EXPECT_EQ(manager->getDockLedStatus(), 1);
    EXPECT_EQ(machine.timeline(),
        QStringList({"20 W 04B0 11", "50 R 04B0 11", "80 R 04B0 11", "110 R 04B0 00", "140 R 04B1 01"}));
    EXPECT_EQ(machine.log.lines(),
        ledCommandWritten
            + QStringList({ledMailboxValue(APP_EC_RGB_READ), ledMailboxPoll, ledMailboxValue(APP_EC_RGB_READ),
                ledMailboxPoll, ledMailboxValue(0)})
            + ledStateLines(1, "dock led is on."));
}

TEST_F(DockLed, AMailboxThatNeverClearsIsGivenUpAndTheStateReadAllTheSame)
{
    machine.faults().switchOn(Fault::MailboxStuck);
    EXPECT_EQ(manager->getDockLedStatus(), 1);

    QStringList expected {"20 W 04B0 11"};
    QStringList lines = ledCommandWritten + QStringList({ledMailboxValue(APP_EC_RGB_READ)});
    for (int read = 0; read < 21; ++read)
        expected << QString("%1 R 04B0 11").arg(50 + 30 * read);
    for (int poll = 0; poll < 20; ++poll)
        lines << ledMailboxPoll << ledMailboxValue(APP_EC_RGB_READ);
    expected << "680 R 04B1 01";
    EXPECT_EQ(machine.timeline(), expected);
    EXPECT_EQ(machine.log.lines(), lines + ledStateLines(1, "dock led is on."));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(DockLed, AMailboxThatIsNeverAnsweredIsPolledToTheEnd)
{
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_CMD);
    EXPECT_EQ(manager->getDockLedStatus(), 1);
    constexpr int reads = 21;
    constexpr int redAt = 20 + reads * (10 + tarnTest::unansweredReadTime) + 10 + tarnTest::accessTime;
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04B0 11", QString("%1 R 04B1 01").arg(redAt)}));
    QStringList lines = ledCommandWritten;
    for (int read = 0; read < reads; ++read) {
        if (read > 0)
            lines << ledMailboxPoll;
        lines << tarnTest::unansweredRead << "W: read ecRGBCmdDataDock from xdata failed.";
    }
    EXPECT_EQ(machine.log.lines(), lines + ledStateLines(1, "dock led is on."));
}

TEST_F(DockLed, AnUnansweredLookAtTheMailboxIsFollowedByAnother)
{
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_CMD);
    machine.clock.at(tarnTest::milliseconds(5000), [this] { machine.faults().clear(); });
    EXPECT_EQ(manager->getDockLedStatus(), 1);
    EXPECT_EQ(machine.log.lines(),
        ledCommandWritten + tarnTest::unansweredRead
            + QStringList({"W: read ecRGBCmdDataDock from xdata failed.", ledMailboxPoll, ledMailboxValue(0)})
            + ledStateLines(1, "dock led is on."));
}

// While later looks fail, the value of the last one that succeeded counts.
TEST_F(DockLed, AFailedPollKeepsPolling)
{
    machine.faults().switchOn(Fault::MailboxStuck);
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_CMD, 1);
    machine.clock.at(tarnTest::milliseconds(5000), [this] { machine.faults().clear(); });
    EXPECT_EQ(manager->getDockLedStatus(), 1);
    EXPECT_EQ(machine.traffic(), QStringList({"W 04B0 11", "R 04B0 11", "R 04B0 00", "R 04B1 01"}));
}

TEST_F(DockLed, AStateThatCannotBeReadFails)
{
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_RED);
    EXPECT_EQ(manager->getDockLedStatus(), -2);
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04B0 11", "50 R 04B0 00"}));
    EXPECT_EQ(machine.log.lines(),
        ledCommandWritten + QStringList({ledMailboxValue(0)}) + tarnTest::unansweredRead
            + QStringList({"W: read rgbRedVerDock from xdata failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

class DockLedSwitch : public DockLed, public ::testing::WithParamInterface<int>
{ };

TEST_P(DockLedSwitch, WritesTheColoursAndThenTheCommand)
{
    const int on = GetParam();
    setRed(1 - on);
    EXPECT_EQ(manager->setDockLedStatus(static_cast<quint32>(on)), 0);
    EXPECT_EQ(machine.timeline(),
        QStringList({QString("20 W 04B1 0%1").arg(on), "50 W 04B2 00", "80 W 04B3 00", "110 W 04B0 12"}));
    EXPECT_EQ(elapsed(), 110); // the EC is not waited for
    EXPECT_EQ(light(), on << 16);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"start to set dock led setting.",
            QString("Success to write rgbColorRedDock:  %1 to XEC_RGB_RED.").arg(on),
            "Success to write rgbColorGreenDock:  0 to XEC_RGB_GREEN.",
            "Success to write rgbColorBlueDock:  0 to XEC_RGB_BLUE.",
            "Success to write APP_EC_RGB_WRITE:  18 to XEC_RGB_CMD.",
            QString::fromUtf8("Set dock led status successed\xEF\xBC\x9A %1").arg(on)}));
    EXPECT_TRUE(lockHeldThroughout());
}

INSTANTIATE_TEST_SUITE_P(Both, DockLedSwitch, ::testing::Values(0, 1));

TEST_F(DockLed, OnlyTheLowByteOfTheValueIsWritten)
{
    EXPECT_EQ(manager->setDockLedStatus(0x1F7), 0);
    EXPECT_EQ(machine.traffic().first(), "W 04B1 F7");
    // The log tells what was written, and at the end what was asked for.
    EXPECT_EQ(machine.log.lines().at(1), "Success to write rgbColorRedDock:  247 to XEC_RGB_RED.");
    EXPECT_EQ(machine.log.lines().last(), QString::fromUtf8("Set dock led status successed\xEF\xBC\x9A 503"));
}

struct FailedLedWrite
{
    const char *name;
    quint16 address;
    int accessesBefore;
    const char *line;
};

namespace {

const FailedLedWrite failedLedWrites[] = {
    {"Red", XEC_RGB_RED, 0, "W: Failed to write rgbColorRedDock:  0 to XEC_RGB_RED."},
    {"Green", XEC_RGB_GREEN, 1, "W: Failed to write rgbColorGreenDock:  0 to XEC_RGB_GREEN."},
    {"Blue", XEC_RGB_BLUE, 2, "W: Failed to write rgbColorBlueDock:  0 to XEC_RGB_BLUE."},
    {"Command", XEC_RGB_CMD, 3, "W: Failed to write APP_EC_RGB_WRITE:  18 to XEC_RGB_CMD."},
};

} // namespace

class DockLedFailures : public DockLed, public ::testing::WithParamInterface<FailedLedWrite>
{ };

TEST_P(DockLedFailures, AFailedWriteLeavesTheLedAsItWas)
{
    machine.faults().switchOn(Fault::FailWrite, GetParam().address);
    EXPECT_EQ(manager->setDockLedStatus(0), -2);
    EXPECT_EQ(machine.traffic(),
        QStringList({"W 04B1 00", "W 04B2 00", "W 04B3 00", "W 04B0 12"}).mid(0, GetParam().accessesBefore));
    EXPECT_EQ(elapsed(), 30 * GetParam().accessesBefore + tarnTest::refusedWriteTime);
    EXPECT_EQ(light(), 1 << 16);
    EXPECT_EQ(machine.log.lines().size(), 2 + GetParam().accessesBefore);
    EXPECT_EQ(machine.log.lines().last(), GetParam().line);
    EXPECT_TRUE(lockHeldThroughout());

    machine.faults().clear();
    EXPECT_EQ(manager->setDockLedStatus(0), 0);
    EXPECT_EQ(light(), 0);
}

INSTANTIATE_TEST_SUITE_P(Writes, DockLedFailures, ::testing::ValuesIn(failedLedWrites),
    [](const auto &row) { return std::string(row.param.name); });
