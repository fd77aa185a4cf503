#include "device/ec_registers.h"
#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"

#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace tarnDeviceInfos;
using tarnSimulator::MachineStateFile;

// The library as the driver uses it: loaded by name, two functions, unloaded and loaded again. Each test has
// a copy of its own, so the state file lies beside it.
class SimulatedPortLibrary : public ::testing::Test
{
protected:
    using WritePort = void (*)(short port, short value);
    using ReadPort = short (*)(short port);

    void SetUp() override
    {
        environment = qgetenv("TARN_SIMULATOR_STATE");
        qunsetenv("TARN_SIMULATOR_STATE");
        const QString copy = folder.filePath(QStringLiteral("inpoutx64.dll"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(TARN_SIMULATED_PORT_LIBRARY), copy));
        library.setFileName(copy);
    }

    void TearDown() override
    {
        if (library.isLoaded())
            library.unload();
        if (!environment.isEmpty())
            qputenv("TARN_SIMULATOR_STATE", environment);
    }

    void load()
    {
        ASSERT_TRUE(library.load()) << library.errorString().toStdString();
        writePort = reinterpret_cast<WritePort>(library.resolve("Out32"));
        readPort = reinterpret_cast<ReadPort>(library.resolve("Inp32"));
        ASSERT_NE(writePort, nullptr);
        ASSERT_NE(readPort, nullptr);
    }

    [[nodiscard]] std::optional<MachineStateFile> machine() const
    {
        std::string error;
        return MachineStateFile::open(
            stateFile.toStdU16String(), MachineStateFile::Missing::IsAnError, error);
    }

    [[nodiscard]] short read(std::uint16_t address) const
    {
        writePort(EC_CMD_STATUS_PORT, XDATA_READ_CMD);
        writePort(EC_DATA_PORT, static_cast<short>(address >> 8));
        writePort(EC_DATA_PORT, static_cast<short>(address & 0xFF));
        return readPort(EC_DATA_PORT);
    }

    QTemporaryDir folder;
    QString stateFile = folder.filePath(QStringLiteral("simulated_computer.state"));
    QByteArray environment;
    QLibrary library;
    WritePort writePort = nullptr;
    ReadPort readPort = nullptr;
};

TEST_F(SimulatedPortLibrary, LoadingMakesTheMachineBesideIt)
{
    ASSERT_FALSE(QFileInfo::exists(stateFile));
    load();
    const auto file = machine();
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->state().counters.libraryLoads.load(), 1U);
    EXPECT_EQ(read(EC_TARN_BATTERY_NUM), 80);
    // All of it is made before any start code of the library but this has run.
    const tarnSimulator::DeviceTree devices(file->state());
    ASSERT_TRUE(devices.find("gpu").has_value());
    EXPECT_EQ(devices.device(*devices.find("gpu")).description, "NVIDIA GeForce RTX 4060 Ti");

    tarnSimulator::ComputerControl(file->state()).setHostBattery(201);
    EXPECT_EQ(read(EC_TARN_BATTERY_NUM), 201);
}

TEST_F(SimulatedPortLibrary, EnvironmentNamesAnotherMachine)
{
    stateFile = folder.filePath(QStringLiteral("other.state"));
    qputenv("TARN_SIMULATOR_STATE", stateFile.toUtf8());
    load();
    qunsetenv("TARN_SIMULATOR_STATE");
    EXPECT_TRUE(machine().has_value());
    EXPECT_FALSE(QFileInfo::exists(folder.filePath(QStringLiteral("simulated_computer.state"))));
}

TEST_F(SimulatedPortLibrary, OnlyTheLowByteOfAValueIsWritten)
{
    load();
    writePort(EC_CMD_STATUS_PORT, static_cast<short>(0xFF00 | XDATA_READ_CMD));
    EXPECT_EQ(machine()->state().counters.commands.load(), 1U);
    EXPECT_EQ(readPort(EC_CMD_STATUS_PORT) & (OBF | IBF), 0);
    EXPECT_EQ(readPort(0x70), 0xFF);
}

// Loading runs the library's start code only when it had really been unloaded.
TEST_F(SimulatedPortLibrary, IsReallyUnloadedAndTheMachineStaysOn)
{
    load();
    const auto file = machine();
    ASSERT_TRUE(file.has_value());
    file->state().xdata[EC_TARN_BATTERY_NUM].store(33);
    writePort(EC_CMD_STATUS_PORT, XDATA_READ_CMD);
    writePort(EC_DATA_PORT, EC_TARN_BATTERY_NUM >> 8);

    ASSERT_TRUE(library.unload());
    load();
    EXPECT_EQ(file->state().counters.libraryLoads.load(), 2U);
    writePort(EC_DATA_PORT, EC_TARN_BATTERY_NUM & 0xFF);
    EXPECT_EQ(readPort(EC_CMD_STATUS_PORT) & (OBF | IBF), OBF);
    EXPECT_EQ(readPort(EC_DATA_PORT), 33);
}

TEST_F(SimulatedPortLibrary, WithoutAUsableMachineThePortsReadAsAnEmptyBus)
{
    QFile file(stateFile);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("something else entirely");
    file.close();

    testing::internal::CaptureStderr();
    load();
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("is not the state of a simulated computer"), std::string::npos) << said;
    writePort(EC_CMD_STATUS_PORT, XDATA_READ_CMD);
    EXPECT_EQ(readPort(EC_CMD_STATUS_PORT), 0xFF);
}

TEST_F(SimulatedPortLibrary, PortAccessesOfSeveralThreadsAreSafe)
{
    load();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 200; ++round) {
                static_cast<void>(read(EC_TARN_BATTERY_NUM));
                static_cast<void>(readPort(EC_CMD_STATUS_PORT));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(machine()->state().counters.commands.load(), 800U);
    while ((readPort(EC_CMD_STATUS_PORT) & OBF) != 0)
        static_cast<void>(readPort(EC_DATA_PORT));
    EXPECT_EQ(read(EC_TARN_BATTERY_NUM), 80);
}
