#include "device/ec_dirver_controller_hal.h"

#include "device/ec_registers.h"
#include "support/scripted_ports.h"

#include <QMetaMethod>
#include <QRegularExpression>

using namespace tarnDeviceInfos;
using tarnTest::PortTest;

namespace {

// As the EC has them.
constexpr std::uint8_t obf = 0x01;
constexpr std::uint8_t ibf = 0x02;

} // namespace

using EcDriverCreation = PortTest;

TEST_F(EcDriverCreation, LoadsTheLibraryOnceAndSaysSo)
{
    EXPECT_EQ(EcDirverControllerHal::instance(), EcDirverControllerHal::instance());
    EXPECT_EQ(ports.log.lines(),
        QStringList({"dirverControllerHal object is create!", "open out32Func and inp32Func is sucessful!",
            "Library loaded"}));
    EXPECT_EQ(tarnTest::portLibraryLoads(), 1);
    EXPECT_FALSE(EcDirverControllerHal::instance()->hasEcAnswered());
    EXPECT_TRUE(ports.takeTrace().isEmpty());
}

TEST_F(EcDriverCreation, EndsTheProcessWithoutALibrary)
{
    ports.folder.removePortLibrary();
    EXPECT_DEATH(EcDirverControllerHal::instance(), "^Cannot load library\n");
}

TEST_F(EcDriverCreation, EndsTheProcessWhenAFunctionIsMissing)
{
    ports.folder.installPortLibrary(tarnTest::RunFolder::PortLibrary::WithoutInp32);
    EXPECT_DEATH(EcDirverControllerHal::instance(), "^out32Func or inp32Func is empty!\n");
}

TEST_F(EcDriverCreation, EndsTheProcessWhenTheLibraryIsNoLibrary)
{
    ports.folder.removePortLibrary();
    ports.folder.write("function/inpoutx64.dll", "this is not a library");
    EXPECT_DEATH(EcDirverControllerHal::instance(), "^Cannot load library\n");
}

TEST_F(EcDriverCreation, HasTheMetaObjectThatOthersConnectTo)
{
    const QMetaObject &meta = EcDirverControllerHal::staticMetaObject;
    EXPECT_NE(meta.indexOfSignal("reloadDllSignal()"), -1);
    EXPECT_NE(meta.indexOfSlot("reloadDLL()"), -1);
}

TEST_F(EcDriverCreation, DestructionUnloadsTheLibrary)
{
    auto *driver = EcDirverControllerHal::instance();
    ports.log.clear();
    delete driver;
    EXPECT_EQ(ports.log.lines(), QStringList({"Library is kill", "dirverControllerHal object is kill!"}));
}

class EcDriver : public PortTest
{
protected:
    EcDriver()
        : driver(EcDirverControllerHal::instance())
    {
        ports.log.clear();
        ports.takeTrace();
    }

    EcDirverControllerHal *driver;
};

TEST_F(EcDriver, ReadsAByteInFourWaits)
{
    bool asked = false;
    int statusReads = 0;
    // OBF comes up at the fifth look: drain, command, two address bytes, answer.
    ports.status = [&] {
        return ++statusReads == 5 ? obf : std::uint8_t(0);
    };
    ports.data = [&] {
        asked = true;
        return std::uint8_t(0xA7);
    };
    quint8 value = 0x11;
    EXPECT_EQ(driver->readXdata(0x06A4, &value), 0);
    EXPECT_EQ(value, 0xA7);
    EXPECT_TRUE(asked);
    EXPECT_EQ(ports.takeTrace(),
        QStringList({"status", "status", "sleep 5", "command 92", "sleep 5", "sleep 5", "status", "byte 06",
            "sleep 5", "status", "byte A4", "status", "data A7"}));
    EXPECT_TRUE(driver->hasEcAnswered());
    EXPECT_TRUE(ports.log.lines().isEmpty());
}

TEST_F(EcDriver, WritesAByteInFourWaits)
{
    EXPECT_EQ(driver->writeXdata(0x04A8, 0x2D), 0);
    EXPECT_EQ(ports.takeTrace(),
        QStringList({"status", "status", "sleep 5", "command 93", "sleep 5", "sleep 5", "status", "byte 04",
            "sleep 5", "status", "byte A8", "status", "byte 2D"}));
    EXPECT_FALSE(driver->hasEcAnswered());
}

TEST_F(EcDriver, ANullPointerCausesNoPortAccess)
{
    EXPECT_EQ(driver->readXdata(0x06A4, nullptr), -1);
    EXPECT_TRUE(ports.takeTrace().isEmpty());
}

TEST_F(EcDriver, DrainsAThousandTimesThenSendsTheCommandAllTheSame)
{
    ports.status = [] {
        return obf;
    };
    EXPECT_EQ(driver->writeXdata(0x04A8, 1), 0);
    const QStringList trace = ports.takeTrace();
    EXPECT_EQ(trace.count("data 00"), 1000);
    EXPECT_EQ(trace.mid(0, 6), QStringList({"status", "data 00", "sleep 5", "status", "data 00", "sleep 5"}));
    EXPECT_EQ(trace.count("command 93"), 1);
    EXPECT_EQ(trace.last(), "byte 01");
    // A drained byte is not taken for the answer.
    EXPECT_FALSE(driver->hasEcAnswered());
}

TEST_F(EcDriver, StopsDrainingWhenNothingWaits)
{
    int waiting = 3;
    ports.status = [&] {
        return waiting > 0 ? obf : std::uint8_t(0);
    };
    ports.data = [&] {
        --waiting;
        return std::uint8_t(9);
    };
    EXPECT_EQ(driver->writeXdata(0x04A8, 1), 0);
    EXPECT_EQ(ports.takeTrace().count("data 09"), 3);
}

TEST_F(EcDriver, GivesUpACommandThatIsNotTakenAfterFiveSeconds)
{
    ports.status = [] {
        return ibf;
    };
    quint8 value = 77;
    EXPECT_EQ(driver->readXdata(0x06A4, &value), -1);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(ports.clock.now(), std::chrono::milliseconds(5000));
    EXPECT_EQ(ports.takeTrace().filter("command").size(), 0);
    EXPECT_EQ(driver->writeXdata(0x06A4, 1), -1);
    EXPECT_EQ(ports.clock.now(), std::chrono::milliseconds(10000));
    EXPECT_TRUE(ports.log.lines().isEmpty());
}

// The EC takes so many bytes (the command counts) and then no more.
class EcDriverStuckAfter : public EcDriver, public ::testing::WithParamInterface<int>
{
protected:
    EcDriverStuckAfter()
    {
        ports.status = [this] {
            taken += static_cast<int>(ports.takeTrace().filter(QRegularExpression("command|byte")).size());
            return taken >= GetParam() ? ibf : std::uint8_t(0);
        };
    }
    int taken = 0;
};

INSTANTIATE_TEST_SUITE_P(Bytes, EcDriverStuckAfter, ::testing::Values(1, 2));

TEST_P(EcDriverStuckAfter, AReadFailsAfterFiveSecondsWithTheValueUntouched)
{
    quint8 value = 250;
    EXPECT_EQ(driver->readXdata(0x06A4, &value), -1);
    EXPECT_EQ(value, 250);
    EXPECT_GE(ports.clock.now(), std::chrono::milliseconds(5000));
    EXPECT_LE(ports.clock.now(), std::chrono::milliseconds(5020));
    EXPECT_EQ(tarnTest::portLibraryLoads(), 1);
}

TEST_P(EcDriverStuckAfter, AWriteFailsAfterFiveSeconds)
{
    EXPECT_EQ(driver->writeXdata(0x06A4, 1), -1);
    EXPECT_GE(ports.clock.now(), std::chrono::milliseconds(5000));
    EXPECT_LE(ports.clock.now(), std::chrono::milliseconds(5020));
}

TEST_F(EcDriver, AWriteFailsWhenTheValueByteIsNotTaken)
{
    int taken = 0;
    ports.status = [&] {
        taken += static_cast<int>(ports.takeTrace().filter(QRegularExpression("command|byte")).size());
        return taken >= 3 ? ibf : std::uint8_t(0);
    };
    EXPECT_EQ(driver->writeXdata(0x06A4, 1), -1);
    EXPECT_EQ(ports.clock.now(), std::chrono::milliseconds(5020));
}

TEST_F(EcDriver, ReloadsTheLibraryWhenAReadIsNotAnswered)
{
    quint8 value = 250;
    EXPECT_EQ(driver->readXdata(0x06A4, &value), -1);
    EXPECT_EQ(value, 250);
    EXPECT_FALSE(driver->hasEcAnswered());
    EXPECT_EQ(ports.log.lines(),
        QStringList({"ec reader not normal, begin to reload dll.", "Library is kill",
            "open out32Func and inp32Func is sucessful!", "Library loaded second"}));
    EXPECT_EQ(tarnTest::portLibraryLoads(), 2);
    // Four waits of the request, a thousand of the answer, the pause before the reload.
    EXPECT_EQ(ports.clock.now(), std::chrono::milliseconds(20 + 5000 + 500));
    EXPECT_EQ(ports.clock.waits().back(), 500);

    // The next call starts afresh.
    EXPECT_EQ(driver->writeXdata(0x06A4, 1), 0);
}

TEST_F(EcDriver, RemembersThatTheEcHasAnsweredWhenItFallsSilent)
{
    ports.status = [this] {
        return ports.count("byte A4") == 1 ? obf : std::uint8_t(0);
    };
    quint8 value = 0;
    ASSERT_EQ(driver->readXdata(0x06A4, &value), 0);
    ASSERT_TRUE(driver->hasEcAnswered());

    EXPECT_EQ(driver->readXdata(0x06A4, &value), -1);
    EXPECT_EQ(tarnTest::portLibraryLoads(), 2);
    EXPECT_TRUE(driver->hasEcAnswered());
    driver->reloadDLL();
    EXPECT_TRUE(driver->hasEcAnswered());
}

TEST_F(EcDriver, TheReloadSlotReloadsByItself)
{
    ASSERT_TRUE(QMetaObject::invokeMethod(driver, "reloadDLL"));
    EXPECT_EQ(ports.log.lines(),
        QStringList(
            {"Library is kill", "open out32Func and inp32Func is sucessful!", "Library loaded second"}));
    EXPECT_EQ(ports.takeTrace(), QStringList({"sleep 500"}));
    EXPECT_EQ(tarnTest::portLibraryLoads(), 2);

    ports.folder.removePortLibrary();
    EXPECT_DEATH(driver->reloadDLL(), "Cannot load library second\n");
}
