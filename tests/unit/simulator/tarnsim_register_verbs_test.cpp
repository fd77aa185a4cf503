#include "tarnsim_session.h"

#include "device/ec_registers.h"
#include "simulator/simulated_ec.h"

#include <thread>

using namespace tarnDeviceInfos;
using tarnSimulator::AccessKind;

class TarnsimRegisters : public tarnSimulatorTest::TarnsimSession
{
protected:
    void logWrites(int count)
    {
        tarnSimulator::RegisterLog log(machine->state().log);
        for (int i = 0; i < count; ++i)
            log.append(AccessKind::Write, EC_FAN_MODE, 1, 12345);
    }

    [[nodiscard]] qsizetype lines() const { return output.count(QLatin1Char('\n')); }
};

TEST_F(TarnsimRegisters, PeeksByNameAndAddress)
{
    computer->poke(EC_FAN_MODE, 0x1F);
    EXPECT_EQ(run(QStringLiteral("peek EC_FAN_MODE")), 0);
    EXPECT_EQ(output, QStringLiteral("0x046E EC_FAN_MODE = 0x1F (31)\n"));
    EXPECT_EQ(run(QStringLiteral("peek 0x46d 3")), 0);
    EXPECT_EQ(
        output, QStringLiteral("0x046D = 0x00 (0)\n0x046E EC_FAN_MODE = 0x1F (31)\n0x046F = 0x00 (0)\n"));
    EXPECT_EQ(run(QStringLiteral("peek 65535")), 0);
    EXPECT_EQ(output, QStringLiteral("0xFFFF = 0x00 (0)\n"));
    EXPECT_EQ(run(QStringLiteral("peek eeprom:0x33")), 0);
    EXPECT_EQ(output, QStringLiteral("eeprom:0x33 = 0x50 (80)\n"));
}

TEST_F(TarnsimRegisters, PokesWithoutTheEcNoticing)
{
    EXPECT_EQ(run(QStringLiteral("poke XEC_APP_CMD_DATA0 7")), 0);
    EXPECT_EQ(run(QStringLiteral("poke XEC_APP_CMD 0x10")), 0);
    EXPECT_EQ(computer->peek(XEC_APP_CMD), 0x10);
    EXPECT_EQ(computer->gpuReports().count, 0U);
    EXPECT_EQ(run(QStringLiteral("poke eeprom:51 1")), 0);
    EXPECT_EQ(computer->peekEeprom(0x33), 1);
}

TEST_F(TarnsimRegisters, RefusesWrongPlacesAndBytes)
{
    for (const char *wrong : {"peek NO_REGISTER", "peek 0x10000", "peek -1", "peek eeprom:256",
             "peek eeprom:", "peek 0xFFFF 2", "peek eeprom:255 2", "peek 0 0", "poke NO_REGISTER 1",
             "poke EC_FAN_MODE 256", "poke EC_FAN_MODE x"}) {
        EXPECT_EQ(run(QString::fromLatin1(wrong)), 2) << wrong;
        EXPECT_TRUE(complained("allowed:")) << wrong;
        EXPECT_TRUE(output.isEmpty()) << wrong;
    }
}

TEST_F(TarnsimRegisters, PrintsOneLineForEachAccess)
{
    tarnSimulator::SimulatedEc ec(machine->state(), [] { return std::uint64_t {12345}; });
    for (const int byte : {EC_POWERMODE_PL1 >> 8, EC_POWERMODE_PL1 & 0xFF, 45}) {
        if (byte == EC_POWERMODE_PL1 >> 8)
            ec.writePort(EC_CMD_STATUS_PORT, XDATA_WRITE_CMD);
        ec.writePort(EC_DATA_PORT, static_cast<std::uint8_t>(byte));
    }
    ec.writePort(EC_CMD_STATUS_PORT, XDATA_READ_CMD);
    ec.writePort(EC_DATA_PORT, 0x01);
    ec.writePort(EC_DATA_PORT, 0x02);
    static_cast<void>(ec.readPort(EC_DATA_PORT));

    EXPECT_EQ(run(QStringLiteral("log")), 0);
    EXPECT_EQ(output,
        QStringLiteral("       1       12.345  write  0x04A8 EC_POWERMODE_PL1 = 0x2D (45)\n"
                       "       2       12.345  read   0x0102 = 0x00 (0)\n"));
}

TEST_F(TarnsimRegisters, PrintsTheLastOnesAsked)
{
    logWrites(30);
    EXPECT_EQ(run(QStringLiteral("log")), 0);
    EXPECT_EQ(lines(), 20);
    EXPECT_TRUE(output.startsWith(QLatin1String("      11 ")));
    EXPECT_EQ(run(QStringLiteral("log --last 5")), 0);
    EXPECT_EQ(lines(), 5);
    EXPECT_EQ(run(QStringLiteral("log --last 0")), 0);
    EXPECT_EQ(lines(), 0);
    EXPECT_EQ(run(QStringLiteral("log --last 100")), 0);
    EXPECT_EQ(lines(), 30);
    logWrites(5000);
    EXPECT_EQ(run(QStringLiteral("log --all")), 0);
    EXPECT_EQ(lines(), static_cast<qsizetype>(tarnSimulator::logEntries));
}

TEST_F(TarnsimRegisters, FollowsNewAccesses)
{
    logWrites(3);
    EXPECT_EQ(run(QStringLiteral("log --last 1 --follow --for 0")), 0);
    EXPECT_EQ(lines(), 1);

    // The thread's accesses come after the tool has begun: it prints nothing of what was there before.
    std::thread host([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        logWrites(2);
    });
    EXPECT_EQ(run(QStringLiteral("log --last 0 --follow --for 1")), 0);
    host.join();
    EXPECT_EQ(lines(), 2);
    EXPECT_TRUE(output.startsWith(QLatin1String("       4 ")));
}

TEST_F(TarnsimRegisters, RefusesWrongLogOptions)
{
    const char *wrong[][2] = {
        {"log --last", "--last needs a number from 0 to 4096"},
        {"log --last x", "--last needs a number"},
        {"log --last 4097", "--last needs a number"},
        {"log --for 1", "--for goes with --follow"},
        {"log --follow --for x", "--for needs a number of seconds"},
        {"log everything", "log does not know \"everything\""},
    };
    for (const auto &[commandLine, objection] : wrong) {
        EXPECT_EQ(run(QString::fromLatin1(commandLine)), 2) << commandLine;
        EXPECT_TRUE(complained(objection)) << commandLine;
    }
}
