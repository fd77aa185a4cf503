#include "accessory/kvane_accessory_manager.h"

#include "power_mode_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::KvaneAccessoryManager;
using tarnSimulator::Fault;

// What the EC knows about a KVane and about the host's battery.
class Kvane : public tarnTest::EcLockTest
{
protected:
    Kvane()
        : manager(KvaneAccessoryManager::instance())
    {
        EcDirverControllerHal::instance();
        machine.attach(ACCESSORY_KVANE);
        machine.log.clear();
    }

    void setSerialNumber(const QByteArray &hex)
    {
        const QByteArray bytes = QByteArray::fromHex(hex);
        for (std::size_t index = 0; index < tarnSimulator::serialNumberLength; ++index)
            machine.state->accessory.kvaneSerialNumber[index] =
                static_cast<quint8>(bytes.at(static_cast<qsizetype>(index)));
    }
    [[nodiscard]] int elapsed() const { return static_cast<int>(machine.clock.now().count()); }

    KvaneAccessoryManager *manager;
};

namespace {

QString serialByteLine(int number, int value)
{
    return QString("read kvane sn code %1 from xdata successed with:  %2").arg(number).arg(value);
}

const int serialBytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD};

} // namespace

TEST(KvaneAccessoryManagerObject, SaysThatItWasCreatedOnce)
{
    const tarnTest::LogCapture log;
    KvaneAccessoryManager *manager = KvaneAccessoryManager::instance();
    EXPECT_EQ(KvaneAccessoryManager::instance(), manager);
    EXPECT_EQ(log.lines(), QStringList({"KvaneAccessoryManager object is created."}));
}

TEST_F(Kvane, GivesTheSerialNumberWithItsLastByteFirst)
{
    setSerialNumber("0123456789ABCD");
    EXPECT_EQ(manager->getKvaneSnCode(), "CDAB8967452301");
    EXPECT_EQ(machine.timeline(),
        QStringList({"30 W 04B0 13", "60 R 04B1 01", "80 R 04B2 23", "100 R 04B3 45", "120 R 04B4 67",
            "140 R 04B5 89", "160 R 04B6 AB", "180 R 04B7 CD"}));
    EXPECT_EQ(elapsed(), 180);
    QStringList lines {"start to get kvane sn code.", "ready to read kvane sn code."};
    for (int index = 0; index < 7; ++index)
        lines << serialByteLine(index + 1, serialBytes[index]);
    EXPECT_EQ(machine.log.lines(), lines + QStringList({"Kvane SN code: \"CDAB8967452301\""}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(Kvane, WritesTwoDigitsForEachByteOfTheSerialNumber)
{
    setSerialNumber("0000000000000A");
    EXPECT_EQ(manager->getKvaneSnCode(), "0A000000000000");
    setSerialNumber("F0E1D2C3B4A596");
    EXPECT_EQ(manager->getKvaneSnCode(), "96A5B4C3D2E1F0");
    setSerialNumber("00000000000000");
    EXPECT_EQ(manager->getKvaneSnCode(), "00000000000000");
}

TEST_F(Kvane, DoesNotWaitForTheMailboxToClear)
{
    machine.faults().switchOn(Fault::MailboxStuck);
    EXPECT_EQ(manager->getKvaneSnCode(), "CDAB8967452301");
    EXPECT_EQ(elapsed(), 180);
}

TEST_F(Kvane, ASerialNumberThatCannotBeAskedForIsDefault)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    EXPECT_EQ(manager->getKvaneSnCode(), "default");
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(elapsed(), 10 + tarnTest::refusedWriteTime);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"start to get kvane sn code.", "begin to read kvane sn code failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

class KvaneSerialFailures : public Kvane, public ::testing::WithParamInterface<int>
{ };

TEST_P(KvaneSerialFailures, AByteThatCannotBeReadMakesItDefault)
{
    const int number = GetParam();
    machine.faults().switchOn(Fault::FailRead, 0x04B0 + number);
    EXPECT_EQ(manager->getKvaneSnCode(), "default");
    EXPECT_EQ(machine.traffic().size(), number);
    QStringList lines {"start to get kvane sn code.", "ready to read kvane sn code."};
    for (int index = 0; index < number - 1; ++index)
        lines << serialByteLine(index + 1, serialBytes[index]);
    EXPECT_EQ(machine.log.lines(),
        lines + tarnTest::unansweredRead
            + QStringList({QString("W: read kvane sn code %1 from xdata failed.").arg(number)}));
    EXPECT_TRUE(lockHeldThroughout());

    machine.faults().clear();
    EXPECT_EQ(manager->getKvaneSnCode(), "CDAB8967452301");
}

INSTANTIATE_TEST_SUITE_P(Bytes, KvaneSerialFailures, ::testing::Range(1, 8));

TEST_F(Kvane, SetsTheLed)
{
    manager->setKVaneLedLight(3);
    EXPECT_EQ(machine.timeline(), QStringList({"30 W 04B1 03", "60 W 04B0 16"}));
    EXPECT_EQ(elapsed(), 60);
    EXPECT_EQ(machine.state->accessory.kvaneLed, 3);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"start to set kvane led light.", "ready to set kvane led light. 3",
            "finish to set kvane led light. 3"}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(Kvane, SetsTheLedToTheLowByteOfTheValue)
{
    manager->setKVaneLedLight(0x12345680);
    EXPECT_EQ(machine.traffic(), QStringList({"W 04B1 80", "W 04B0 16"}));
    // The log tells what was asked for.
    EXPECT_EQ(machine.log.lines().mid(1),
        QStringList({"ready to set kvane led light. 305419904", "finish to set kvane led light. 305419904"}));
}

TEST_F(Kvane, DoesNotWaitForTheLedCommandToClear)
{
    machine.faults().switchOn(Fault::MailboxStuck);
    manager->setKVaneLedLight(1);
    EXPECT_EQ(elapsed(), 60);
}

TEST_F(Kvane, ALedValueThatCannotBeWrittenIsNotApplied)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_RED);
    manager->setKVaneLedLight(3);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(machine.log.lines(),
        QStringList({"start to set kvane led light.", "begin to set kvane led light failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(Kvane, ALedCommandThatCannotBeWrittenIsLogged)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    manager->setKVaneLedLight(3);
    EXPECT_EQ(machine.traffic(), QStringList({"W 04B1 03"}));
    EXPECT_EQ(machine.state->accessory.kvaneLed, 0);
    EXPECT_EQ(machine.log.lines(),
        QStringList({"start to set kvane led light.", "ready to set kvane led light. 3",
            "finish to set kvane led light failed."}));
    EXPECT_TRUE(lockHeldThroughout());
}

TEST_F(Kvane, ReadsTheLedWithoutTakingTheLock)
{
    machine.state->accessory.kvaneLed = 0xC8;
    EXPECT_EQ(manager->getKVaneLedLight(), 0xC8);
    EXPECT_EQ(machine.timeline(), QStringList({"20 W 04B0 15", "50 R 04B1 C8"}));
    EXPECT_EQ(elapsed(), 50);
    EXPECT_TRUE(machine.log.lines().isEmpty());
    EXPECT_TRUE(lockNeverTaken());
}

TEST_F(Kvane, ALedThatCannotBeReadIsMinusOne)
{
    machine.faults().switchOn(Fault::FailWrite, XEC_RGB_CMD);
    EXPECT_EQ(manager->getKVaneLedLight(), -1);
    EXPECT_TRUE(machine.traffic().isEmpty());
    machine.faults().clear();
    machine.faults().switchOn(Fault::FailRead, XEC_RGB_RED);
    EXPECT_EQ(manager->getKVaneLedLight(), -1);
    EXPECT_EQ(machine.traffic(), QStringList({"W 04B0 15"}));
    EXPECT_EQ(machine.log.lines(), tarnTest::unansweredRead); // the driver's lines alone
}

// One of the plain readers: one register, one access, no lock, no line.
struct PlainReader
{
    const char *name;
    int (KvaneAccessoryManager::*read)();
    quint16 address;
    std::function<int(int)> meaning;
    int whenUnread;
};

namespace {

int wholeByte(int byte)
{
    return byte;
}

const PlainReader plainReaders[] = {
    {"getKvaneChargingStatus", &KvaneAccessoryManager::getKvaneChargingStatus, 0x06CC,
        [](int byte) { return byte / 2 % 2; }, 0},
    {"getKvaneBatteryNum", &KvaneAccessoryManager::getKvaneBatteryNum, 0x06CD, wholeByte, 255},
    {"getTarnChargingStatus", &KvaneAccessoryManager::getTarnChargingStatus, 0x0570,
        [](int byte) { return byte % 2; }, 0},
    {"getTarnBatteryNum", &KvaneAccessoryManager::getTarnBatteryNum, 0x050F, wholeByte, 255},
};

} // namespace

class KvaneReaders : public Kvane, public ::testing::WithParamInterface<PlainReader>
{
protected:
    int read()
    {
        const auto reader = GetParam().read;
        return (manager->*reader)();
    }
};

TEST_P(KvaneReaders, GiveTheirPartOfTheByte)
{
    for (int byte = 0; byte <= 255; ++byte) {
        setRegister(GetParam().address, static_cast<quint8>(byte));
        EXPECT_EQ(read(), GetParam().meaning(byte)) << byte;
    }
    EXPECT_TRUE(machine.log.lines().isEmpty());
    EXPECT_TRUE(lockNeverTaken());
}

TEST_P(KvaneReaders, TakeOneAccess)
{
    setRegister(GetParam().address, 0x5A);
    read();
    EXPECT_EQ(machine.timeline(),
        QStringList({QString("20 R %1 5A").arg(GetParam().address, 4, 16, QLatin1Char('0')).toUpper()}));
    EXPECT_EQ(elapsed(), 20);
}

TEST_P(KvaneReaders, HaveAValueForAFailedRead)
{
    setRegister(GetParam().address, 0x77);
    machine.faults().switchOn(Fault::FailRead, GetParam().address);
    EXPECT_EQ(read(), GetParam().whenUnread);
    EXPECT_EQ(machine.log.lines(), tarnTest::unansweredRead); // the driver's lines alone
}

// The monitor, their caller, holds the EC.
TEST_P(KvaneReaders, WorkWhileTheCallerHoldsTheEC)
{
    const EcAccess access;
    setRegister(GetParam().address, 0xFF);
    EXPECT_EQ(read(), GetParam().meaning(0xFF));
    EXPECT_TRUE(ecAccessMutex.isLocked());
}

INSTANTIATE_TEST_SUITE_P(All, KvaneReaders, ::testing::ValuesIn(plainReaders),
    [](const auto &row) { return std::string(row.param.name); });
