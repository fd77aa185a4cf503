#include "pipe/tarn_pipe_server.h"

#include "accessory/power_profiles.h"
#include "device/ec_access_lock.h"
#include "device/ec_registers.h"
#include "support/simulated_machine.h"

#include <thread>
#include <vector>

using namespace tarnDeviceInfos;
using tarnAccessoryManager::PowerProfile;
using tarnAccessoryManager::powerProfiles;
using tarnPipeServer::TarnPipeServer;

class PowerAndLightCommands : public tarnTest::MachineTest
{
protected:
    PowerAndLightCommands()
        : server(TarnPipeServer::instance())
    {
        machine.computer.setPowerControl(PL_CTRL_MANUAL); // as a client's start leaves it
        QObject::connect(server, &TarnPipeServer::startChangingTimer, server, [this] { ++started; });
        QObject::connect(server, &TarnPipeServer::stopChangingTimer, server, [this] { ++stopped; });
    }

    QString ask(const char *command, const char *data)
    {
        return server->dispatch(QStringLiteral(R"({"cmd":"%1","data":"%2"})").arg(command, data).toUtf8());
    }
    QString ask(const char *command)
    {
        return server->dispatch(QStringLiteral(R"({"cmd":"%1"})").arg(command).toUtf8());
    }
    static QString result(const char *command, const char *data, const char *outcome)
    {
        return QStringLiteral(R"({"cmd":"%1","data":"%2","result":"%3"})").arg(command, data, outcome);
    }
    static QString data(const char *command, const char *value)
    {
        return QStringLiteral(R"({"cmd":"%1","data":"%2"})").arg(command, value);
    }
    void breakRegister(quint16 address)
    {
        machine.faults().switchOn(tarnSimulator::Fault::FailRegister, address);
    }

    // What was written to limits and fan since the last call.
    QStringList limitWrites()
    {
        QStringList writes;
        for (const QString &access : machine.traffic()) {
            for (const quint16 address :
                {EC_POWERMODE_PL1, EC_POWERMODE_PL2, EC_POWERMODE_PL4, EC_FAN_MODE}) {
                if (access.startsWith(QString("W %1 ").arg(address, 4, 16, QLatin1Char('0')).toUpper()))
                    writes << access;
            }
        }
        return writes;
    }
    QStringList limitsWrittenBy(const char *profile)
    {
        machine.traffic();
        ask("powerModeControl", profile);
        machine.log.clear();
        return limitWrites();
    }

    TarnPipeServer *server;
    int started = 0;
    int stopped = 0;
};

TEST_F(PowerAndLightCommands, ApplyAProfile)
{
    for (const PowerProfile &profile : powerProfiles) {
        EXPECT_EQ(
            ask("powerModeControl", profile.name), result("powerModeControl", profile.name, "successed"));
        EXPECT_EQ(machine.folder.read("powermodeconfig.xml"), QByteArray::number(profile.number));
    }
    EXPECT_EQ(ask("powerModeControl", "low"), result("powerModeControl", "low", "successed"));
    breakRegister(EC_POWERMODE_PL1);
    EXPECT_EQ(ask("powerModeControl", "high"), result("powerModeControl", "high", "failed"));
    EXPECT_EQ(machine.folder.read("powermodeconfig.xml"), "2");
}

// Either may come first, but the limits of one profile are never mixed with those of the other.
TEST_F(PowerAndLightCommands, ApplyTheProfilesOfTwoClientsOneAfterTheOther)
{
    const QStringList high = limitsWrittenBy("high");
    const QStringList low = limitsWrittenBy("low");
    ASSERT_EQ(high.size(), 4);
    ASSERT_NE(high, low);
    // In each wait the other handler runs.
    machine.clock.onWait = [](tarnTest::milliseconds) {
        QThread::msleep(1);
    };
    for (int round = 0; round < 5; ++round) {
        ASSERT_TRUE(ecAccessMutex.lock());
        std::vector<std::thread> clients;
        for (const char *profile : {"high", "low"})
            clients.emplace_back([this, profile] {
                EXPECT_EQ(ask("powerModeControl", profile), result("powerModeControl", profile, "successed"));
            });
        while (machine.log.count("begin to set ec powermode.") < 2)
            QThread::msleep(1);
        ecAccessMutex.unlock();
        for (std::thread &one : clients)
            one.join();
        const QStringList written = limitWrites();
        EXPECT_TRUE(written == high + low || written == low + high) << written.join(", ").toStdString();
        const QByteArray saved = machine.folder.read("powermodeconfig.xml");
        EXPECT_TRUE(saved == "0" || saved == "2") << saved.toStdString();
        machine.log.clear();
    }
    machine.clock.onWait = nullptr;
}

TEST_F(PowerAndLightCommands, AnswerTheClientsStartWithTheProfileInForce)
{
    machine.computer.setPowerControl(PL_CTRL_AUTO);
    machine.folder.write("powermodeconfig.xml", "2");
    EXPECT_EQ(ask("powerModeControl", "first"), result("powerModeControl", "first", "2"));
    EXPECT_TRUE(machine.log.contains("+++++++++++++++++++===========================: 2"));
    EXPECT_EQ(machine.state->xdata[EC_POWERMODE_PL_CTRL], PL_CTRL_MANUAL);
}

TEST_F(PowerAndLightCommands, AnswerTheClientsStartWithTheOldProfileWhenControlIsRefused)
{
    breakRegister(EC_POWERMODE_PL_CTRL);
    EXPECT_EQ(ask("powerModeControl", "first"), result("powerModeControl", "first", "-10"));
}

TEST_F(PowerAndLightCommands, AnswerTheClientsStartWithTheFailureOfTheRestore)
{
    breakRegister(EC_POWERMODE_PL2);
    EXPECT_EQ(ask("powerModeControl", "first"), result("powerModeControl", "first", "-2"));
}

TEST_F(PowerAndLightCommands, AnswerTheClientsEndWithNothing)
{
    EXPECT_EQ(ask("powerModeControl", "last"), QString());
    EXPECT_EQ(machine.state->xdata[EC_POWERMODE_PL_CTRL], PL_CTRL_AUTO);
    EXPECT_TRUE(machine.log.contains("app is closing now."));
}

TEST_F(PowerAndLightCommands, RefuseOtherPowerData)
{
    EXPECT_EQ(ask("powerModeControl", "HIGH"), result("powerModeControl", "HIGH", "failed"));
    EXPECT_TRUE(machine.log.contains("Unknown command:  \"HIGH\""));
    EXPECT_EQ(ask("powerModeControl"), R"({"cmd":"powerModeControl","result":"failed"})");
    EXPECT_TRUE(machine.log.contains("Unknown command:  \"\""));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(PowerAndLightCommands, SwitchSmartChargingAndItsTimer)
{
    EXPECT_EQ(ask("setSmartChargingStatus", "OFF"), result("setSmartChargingStatus", "OFF", "successed"));
    EXPECT_EQ(machine.state->eeprom[EEP_SMART_CHARGING], SMART_CHARGING_OFF);
    EXPECT_EQ(started, 1);
    EXPECT_EQ(stopped, 0);
    EXPECT_EQ(ask("setSmartChargingStatus", "ON"), result("setSmartChargingStatus", "ON", "successed"));
    EXPECT_EQ(machine.state->eeprom[EEP_SMART_CHARGING], SMART_CHARGING_ON);
    EXPECT_EQ(started, 1);
    EXPECT_EQ(stopped, 1);
}

TEST_F(PowerAndLightCommands, SwitchTheTimerEvenWhenTheEcFails)
{
    machine.faults().switchOn(tarnSimulator::Fault::EepromError, 2);
    EXPECT_EQ(ask("setSmartChargingStatus", "OFF"), result("setSmartChargingStatus", "OFF", "failed"));
    EXPECT_EQ(ask("setSmartChargingStatus", "ON"), result("setSmartChargingStatus", "ON", "failed"));
    EXPECT_EQ(started, 1);
    EXPECT_EQ(stopped, 1);
}

TEST_F(PowerAndLightCommands, RefuseOtherSmartChargingData)
{
    EXPECT_EQ(ask("setSmartChargingStatus", "on"), result("setSmartChargingStatus", "on", "failed"));
    EXPECT_TRUE(machine.log.contains("Unknown command:  \"on\""));
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(started + stopped, 0);
}

TEST_F(PowerAndLightCommands, TellSmartCharging)
{
    machine.state->eeprom[EEP_SMART_CHARGING] = SMART_CHARGING_ON;
    EXPECT_EQ(ask("getSmartChargingStatus"), data("getSmartChargingStatus", "ON"));
    EXPECT_EQ(started, 0);
    machine.state->eeprom[EEP_SMART_CHARGING] = SMART_CHARGING_OFF;
    EXPECT_EQ(ask("getSmartChargingStatus"), data("getSmartChargingStatus", "OFF"));
    EXPECT_EQ(started, 1);
    machine.state->eeprom[EEP_SMART_CHARGING] = 1;
    EXPECT_EQ(ask("getSmartChargingStatus"), data("getSmartChargingStatus", "failed"));
    EXPECT_EQ(started, 1);
    EXPECT_EQ(stopped, 0);
}

TEST_F(PowerAndLightCommands, TellAndSetTheDevicePowerMode)
{
    for (const PowerProfile &profile : powerProfiles) {
        EXPECT_EQ(
            ask("setTarnPowerMode", profile.name), result("setTarnPowerMode", profile.name, "successed"));
        EXPECT_EQ(machine.state->xdata[EC_TARN_POWER_MODE], profile.ecFlag);
        EXPECT_EQ(ask("getTarnPowerMode"), data("getTarnPowerMode", profile.name));
    }
    machine.state->xdata[EC_TARN_POWER_MODE] = 3; // the flag of no profile
    EXPECT_EQ(ask("getTarnPowerMode"), data("getTarnPowerMode", "hide"));
    EXPECT_EQ(ask("setTarnPowerMode", "hide"), result("setTarnPowerMode", "hide", "failed"));
    EXPECT_TRUE(machine.log.contains("unknown cmd when set tarn power mode."));
    breakRegister(EC_TARN_POWER_MODE);
    EXPECT_EQ(ask("setTarnPowerMode", "low"), result("setTarnPowerMode", "low", "failed"));
    EXPECT_EQ(ask("getTarnPowerMode"), data("getTarnPowerMode", "hide"));
}

TEST_F(PowerAndLightCommands, SwitchTheDocksLight)
{
    machine.attach(ACCESSORY_DOCK);
    EXPECT_EQ(ask("setDockLedStatus", "on"), result("setDockLedStatus", "on", "successed"));
    EXPECT_EQ(ask("getDockLedStatus"), data("getDockLedStatus", "on"));
    EXPECT_EQ(ask("setDockLedStatus", "off"), result("setDockLedStatus", "off", "successed"));
    EXPECT_EQ(ask("getDockLedStatus"), data("getDockLedStatus", "off"));
    breakRegister(XEC_RGB_GREEN);
    EXPECT_EQ(ask("setDockLedStatus", "on"), result("setDockLedStatus", "on", "failed"));
}

TEST_F(PowerAndLightCommands, RefuseOtherLightData)
{
    EXPECT_EQ(ask("setDockLedStatus", "ON"), result("setDockLedStatus", "ON", "failed"));
    EXPECT_TRUE(machine.log.contains("Unknown command:  \"ON\""));
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(PowerAndLightCommands, TellAnUnknownDockLight)
{
    breakRegister(XEC_RGB_RED);
    EXPECT_EQ(ask("getDockLedStatus"), data("getDockLedStatus", "unknown"));
    EXPECT_TRUE(machine.log.contains("Get unknown dock led status:  -2"));
}

TEST_F(PowerAndLightCommands, NameTheColourOfTheBox)
{
    machine.attach(ACCESSORY_GRAPHICS);
    machine.computer.setGraphicsLight({30, 149, 212});
    EXPECT_EQ(ask("getGraphicsRGB"), data("getGraphicsRGB", "blue"));
    breakRegister(XEC_RGB_CMD);
    EXPECT_EQ(ask("getGraphicsRGB"), data("getGraphicsRGB", "shutdown"));
    EXPECT_TRUE(machine.log.contains("Get unknown graphics rgb ver:  -1"));
}

TEST_F(PowerAndLightCommands, SetTheColourOfTheBox)
{
    machine.attach(ACCESSORY_GRAPHICS);
    EXPECT_EQ(ask("setGraphicsRGB", "purplishred"), result("setGraphicsRGB", "purplishred", "successed"));
    EXPECT_EQ(machine.computer.graphicsLight().toWord(), 0xFF00FFU);
    EXPECT_EQ(ask("setGraphicsRGB", "shutdown"), result("setGraphicsRGB", "shutdown", "successed"));
    EXPECT_EQ(machine.computer.graphicsLight().toWord(), 0U);
    EXPECT_EQ(ask("setGraphicsRGB", "on"), result("setGraphicsRGB", "purplishred", "successed"));
    EXPECT_EQ(machine.computer.graphicsLight().toWord(), 0xFF00FFU);
    breakRegister(XEC_RGB_RED);
    EXPECT_EQ(ask("setGraphicsRGB", "on"), result("setGraphicsRGB", "purplishred", "failed"));
    EXPECT_EQ(ask("setGraphicsRGB", "red"), result("setGraphicsRGB", "red", "failed"));
}

TEST_F(PowerAndLightCommands, SetNoColourThatTheBoxDoesNotKnow)
{
    machine.attach(ACCESSORY_GRAPHICS);
    machine.traffic();
    for (const char *name : {"Red", "purplish red", "", "1"}) {
        EXPECT_EQ(ask("setGraphicsRGB", name), result("setGraphicsRGB", name, "failed"));
        EXPECT_TRUE(machine.log.contains(QString("Unknown command:  \"%1\"").arg(name)));
    }
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(PowerAndLightCommands, BanTheGpuBeforeAnUpdateOfTheBox)
{
    machine.attach(ACCESSORY_GRAPHICS);
    auto &devices = machine.computer.devices();
    const auto gpu = *devices.find("gpu");
    devices.enable(gpu);
    EXPECT_EQ(ask("requestBeginGraphicsMcuUpdate"), R"({"cmd":"requestBeginGraphicsMcuUpdate"})");
    EXPECT_TRUE(machine.log.contains("Ban gpu before gpu mcu update."));
    EXPECT_FALSE(devices.device(gpu).started);
}
