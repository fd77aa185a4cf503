#pragma once

#include "device/ec_registers.h"
#include "end_to_end/service_process.h"
#include "simulator/accessory_catalog.h"
#include "simulator/clock.h"
#include "simulator/computer_control.h"
#include "simulator/firmware_image.h"
#include "simulator/machine_state_file.h"
#include "simulator/simulated_ec.h"
#include "support/pipe_peer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace tarnTest {

using Bytes = std::vector<std::uint8_t>;

inline const QString portName = QStringLiteral(R"(\\.\COM1)");

struct FlasherRun
{
    int exitCode = -1;
    QString out;
    QString err;
};

// The real flasher against the simulated MCU, without the service. What it says is recorded here, because the
// service judges an update by the flasher's standard error alone.
class FlasherFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("function/MCU")));
        for (const char *name : {"stm32flash.exe", "stm32flash_framing.so"}) {
            const QString file = QStringLiteral("function/MCU/") + QString::fromUtf8(name);
            ASSERT_TRUE(QFile::copy(builtProgram(file), folder.filePath(file))) << name;
        }
        std::string error;
        machine = tarnSimulator::MachineStateFile::open(
            stateFile().toStdString(), tarnSimulator::MachineStateFile::Missing::IsCreated, error);
        ASSERT_TRUE(machine.has_value()) << error;
        computer = std::make_unique<tarnSimulator::ComputerControl>(machine->state());
        ec = std::make_unique<tarnSimulator::SimulatedEc>(machine->state(), tarnSimulator::steadyNowMs);
        computer->attach(*tarnSimulator::findAccessory(tarnDeviceInfos::ACCESSORY_KVANE));
        ASSERT_TRUE(startPort());
    }

    void TearDown() override
    {
        if (port.state() != QProcess::NotRunning) {
            EXPECT_EQ(stopPort(SIGTERM), 0);
        }
    }

    [[nodiscard]] QString stateFile() const { return folder.filePath("function/simulated_computer.state"); }
    [[nodiscard]] QString inMcuFolder(const QString &name) const
    {
        return folder.filePath(QStringLiteral("function/MCU/") + name);
    }
    [[nodiscard]] bool hasPort() const { return QFileInfo(inMcuFolder(portName)).isSymLink(); }

    [[nodiscard]] bool startPort()
    {
        port.setWorkingDirectory(folder.path());
        port.start(builtProgram(QStringLiteral("tarnserial")), QStringList());
        return waitUntil([this] { return hasPort() && port.canReadLine(); });
    }

    [[nodiscard]] int stopPort(int signal)
    {
        ::kill(static_cast<pid_t>(port.processId()), signal);
        return port.waitForFinished(5000) && port.exitStatus() == QProcess::NormalExit ? port.exitCode() : -1;
    }

    // The host's way, one port access after the other.
    void control(int value)
    {
        using namespace tarnDeviceInfos;
        ec->writePort(EC_CMD_STATUS_PORT, XDATA_WRITE_CMD);
        for (const int byte : {EC_MCU_UPDATE_CTRL >> 8, EC_MCU_UPDATE_CTRL & 0xFF, value})
            ec->writePort(EC_DATA_PORT, static_cast<std::uint8_t>(byte));
    }
    void enterBootLoader()
    {
        for (const int value : {0x20, 0x28, 0x38, 0x28})
            control(value);
        ASSERT_EQ(computer->mcuMode(), tarnSimulator::McuMode::BootLoader);
    }
    void startFirmware()
    {
        for (const int value : {0x20, 0x30, 0x20, 0x00})
            control(value);
    }

    void write(const QString &name, const Bytes &bytes) const
    {
        QFile file(inMcuFolder(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const auto size = static_cast<qint64>(bytes.size());
        ASSERT_EQ(file.write(reinterpret_cast<const char *>(bytes.data()), size), size);
    }

    // As the service runs it.
    [[nodiscard]] FlasherRun flash(const QString &name = QStringLiteral("fw.bin")) const
    {
        QProcess process;
        process.setWorkingDirectory(inMcuFolder(QString()));
        process.start(inMcuFolder(QStringLiteral("stm32flash.exe")),
            {QStringLiteral("-w"), name, QStringLiteral("-v"), QStringLiteral("-g"), QStringLiteral("0x0"),
                portName});
        if (!process.waitForFinished(60000)) {
            process.kill();
            return {};
        }
        return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
            QString::fromLocal8Bit(process.readAllStandardError())};
    }

    // Prepares everything, breaks one thing, flashes.
    [[nodiscard]] FlasherRun flashWith(tarnSimulator::Fault fault, int value = 0)
    {
        write(QStringLiteral("fw.bin"), firmware);
        enterBootLoader();
        computer->faults().switchOn(fault, value);
        return flash();
    }

    // The next update works as if nothing had been.
    void expectRepaired()
    {
        computer->faults().clear();
        enterBootLoader();
        const FlasherRun run = flash();
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.err, QString());
        startFirmware();
        EXPECT_EQ(version(), 70102);
    }

    [[nodiscard]] int version() const
    {
        using namespace tarnDeviceInfos;
        return computer->peek(MCU_VERSION_MAJOR) * 10000 + computer->peek(MCU_VERSION_MINOR) * 100
            + computer->peek(MCU_VERSION_PATCH);
    }

    const Bytes firmware = tarnSimulator::makeFirmwareImage({7, 1, 2});
    QTemporaryDir folder;
    std::optional<tarnSimulator::MachineStateFile> machine;
    std::unique_ptr<tarnSimulator::ComputerControl> computer;
    std::unique_ptr<tarnSimulator::SimulatedEc> ec;
    QProcess port;
};

} // namespace tarnTest
