#include "device/ec_registers.h"
#include "simulator/computer_control.h"
#include "simulator/machine_state_file.h"
#include "simulator/state_location.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

using tarnSimulator::MachineStateFile;
using Missing = tarnSimulator::MachineStateFile::Missing;

class SimulatedStateFile : public ::testing::Test
{
protected:
    [[nodiscard]] std::optional<MachineStateFile> open(Missing missing)
    {
        return MachineStateFile::open(file, missing, error);
    }

    void writeFile(const std::string &content) const { std::ofstream(file, std::ios::binary) << content; }

    [[nodiscard]] std::size_t filesInFolder() const
    {
        return static_cast<std::size_t>(std::distance(
            std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
    }

    QTemporaryDir temporary;
    std::filesystem::path folder = temporary.path().toStdU16String();
    std::filesystem::path file = folder / u"Zustand \u00e4.state";
    std::string error;
};

TEST_F(SimulatedStateFile, IsNotMadeUnlessAskedFor)
{
    EXPECT_FALSE(open(Missing::IsAnError).has_value());
    EXPECT_NE(error.find("cannot be opened"), std::string::npos) << error;
    EXPECT_EQ(filesInFolder(), 0U);
}

TEST_F(SimulatedStateFile, NewOneHoldsAPoweredMachine)
{
    const auto opened = open(Missing::IsCreated);
    ASSERT_TRUE(opened.has_value()) << error;
    EXPECT_EQ(opened->path(), file);
    EXPECT_EQ(opened->state().header.magic.load(), tarnSimulator::stateMagic);
    EXPECT_EQ(opened->state().header.version.load(), tarnSimulator::stateVersion);
    EXPECT_EQ(opened->state().xdata[tarnDeviceInfos::EC_TARN_BATTERY_NUM].load(), 80);
    EXPECT_EQ(std::filesystem::file_size(file), sizeof(tarnSimulator::MachineState));
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SimulatedStateFile, IsSharedAndOutlivesItsUsers)
{
    {
        const auto first = open(Missing::IsCreated);
        const auto second = open(Missing::IsAnError);
        ASSERT_TRUE(first && second) << error;
        tarnSimulator::ComputerControl(first->state()).setHostBattery(17);
        EXPECT_EQ(second->state().xdata[tarnDeviceInfos::EC_TARN_BATTERY_NUM].load(), 17);
    }
    const auto third = open(Missing::IsCreated);
    ASSERT_TRUE(third.has_value()) << error;
    EXPECT_EQ(third->state().xdata[tarnDeviceInfos::EC_TARN_BATTERY_NUM].load(), 17);
}

TEST_F(SimulatedStateFile, MovedHandleStaysMapped)
{
    auto opened = open(Missing::IsCreated);
    ASSERT_TRUE(opened.has_value());
    MachineStateFile moved = std::move(*opened);
    opened.reset();
    moved.state().xdata[1].store(5);
    EXPECT_EQ(moved.state().xdata[1].load(), 5);
}

TEST_F(SimulatedStateFile, ForeignFileIsRefusedAndLeftAlone)
{
    const std::string content(100000, 'x');
    writeFile(content);
    EXPECT_FALSE(open(Missing::IsCreated).has_value());
    EXPECT_NE(error.find("is not the state of a simulated computer"), std::string::npos) << error;
    std::ifstream stream(file, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), content);
}

TEST_F(SimulatedStateFile, EmptyAndShortFilesAreRefused)
{
    for (const char *content : {"", "short"}) {
        writeFile(content);
        EXPECT_FALSE(open(Missing::IsCreated).has_value());
        EXPECT_NE(error.find("too short"), std::string::npos) << error;
    }
}

TEST_F(SimulatedStateFile, OtherVersionIsRefusedAndNamed)
{
    open(Missing::IsCreated)->state().header.version.store(4711);
    EXPECT_FALSE(open(Missing::IsCreated).has_value());
    EXPECT_NE(error.find("version 4711"), std::string::npos) << error;
    EXPECT_NE(error.find("needs version 3"), std::string::npos) << error;
}

TEST_F(SimulatedStateFile, TruncatedOneIsRefused)
{
    ASSERT_TRUE(open(Missing::IsCreated).has_value());
    std::filesystem::resize_file(file, sizeof(tarnSimulator::MachineState) - 1);
    EXPECT_FALSE(open(Missing::IsAnError).has_value());
    EXPECT_NE(error.find("size is wrong"), std::string::npos) << error;
}

TEST_F(SimulatedStateFile, MissingFolderIsAnError)
{
    file = folder / "no" / "such" / "folder.state";
    EXPECT_FALSE(open(Missing::IsCreated).has_value());
    EXPECT_NE(error.find("cannot be created"), std::string::npos) << error;
}

TEST_F(SimulatedStateFile, FinishedFileNeverReplacesOneThatIsThere)
{
    writeFile("first");
    const std::filesystem::path late = folder / "late";
    std::ofstream(late) << "second";
    EXPECT_TRUE(tarnSimulator::renameUnlessThere(late, file, error)) << error;
    EXPECT_EQ(std::filesystem::file_size(file), 5U);
    EXPECT_TRUE(std::filesystem::exists(late));

    std::filesystem::remove(file);
    EXPECT_TRUE(tarnSimulator::renameUnlessThere(late, file, error)) << error;
    EXPECT_EQ(std::filesystem::file_size(file), 6U);
    EXPECT_FALSE(std::filesystem::exists(late));

    EXPECT_FALSE(tarnSimulator::renameUnlessThere(late, file.parent_path() / "no" / "folder", error));
    EXPECT_FALSE(error.empty());
}

TEST_F(SimulatedStateFile, OpenedByManyAtOnceItIsOneMachine)
{
    constexpr std::size_t openers = 8;
    std::vector<std::optional<MachineStateFile>> opened(openers);
    std::vector<std::string> errors(openers);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < openers; ++i) {
        threads.emplace_back([this, &opened, &errors, i] {
            opened[i] = MachineStateFile::open(file, Missing::IsCreated, errors[i]);
            if (opened[i])
                opened[i]->state().xdata[i].store(static_cast<std::uint8_t>(i + 1));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (std::size_t i = 0; i < openers; ++i) {
        ASSERT_TRUE(opened[i].has_value()) << errors[i];
        for (std::size_t byte = 0; byte < openers; ++byte)
            EXPECT_EQ(opened[i]->state().xdata[byte].load(), byte + 1);
    }
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(SimulatedStateFile, EnvironmentNamesTheFileElseItLiesBesideTheCode)
{
    const QByteArray before = qgetenv(tarnSimulator::stateFileVariable);
    qputenv(tarnSimulator::stateFileVariable, "/some/where.state");
    EXPECT_EQ(tarnSimulator::stateFileOfLibrary(), std::filesystem::absolute("/some/where.state"));
    qunsetenv(tarnSimulator::stateFileVariable);
    EXPECT_EQ(tarnSimulator::stateFileFromEnvironment(), std::nullopt);
    EXPECT_EQ(tarnSimulator::stateFileOfLibrary().filename(), "simulated_computer.state");
    EXPECT_EQ(tarnSimulator::stateFileOfLibrary(),
        std::filesystem::absolute(tarnSimulator::moduleFile().parent_path() / "simulated_computer.state"));
    if (!before.isEmpty())
        qputenv(tarnSimulator::stateFileVariable, before);
}
