#include "unit/panel/computer/panel_machine.h"

#include <filesystem>

using namespace tarnPanel;
using namespace tarnPanelTest;

namespace {

class MachineWatchTest : public PanelMachine
{
protected:
    void replaceMachine()
    {
        std::filesystem::remove(stateFile.toStdU16String());
        makeMachine();
    }

    MachineWatch watch {stateFile};
};

} // namespace

TEST_F(MachineWatchTest, SeesAReplacedMachine)
{
    watch.look();
    ASSERT_TRUE(watch.hasMachine());
    QList<bool> changes;
    QObject::connect(&watch, &MachineWatch::machineChanged, &watch, [&changes](bool on) { changes << on; });
    watch.look();
    EXPECT_TRUE(changes.isEmpty());
    replaceMachine();
    computer->setHostBattery(33);
    watch.look();
    EXPECT_EQ(changes, QList<bool>({false, true}));
    EXPECT_EQ(watch.computer()->peek(tarnDeviceInfos::EC_TARN_BATTERY_NUM), 33);
}

TEST_F(MachineWatchTest, LeavesAFileThatHasBecomeTooShort)
{
    watch.look();
    ASSERT_TRUE(watch.hasMachine());
    computer.reset();
    std::filesystem::resize_file(stateFile.toStdU16String(), 100);
    watch.look();
    EXPECT_FALSE(watch.hasMachine());
    EXPECT_TRUE(watch.reason().contains(QStringLiteral("damaged"))) << watch.reason().toStdString();
    EXPECT_EQ(watch.computer(), nullptr);
}

TEST_F(MachineWatchTest, LooksOnlyWhileItIsActive)
{
    int looks = 0;
    QObject::connect(&watch, &MachineWatch::looked, &watch, [&looks] { ++looks; });
    watch.setActive(true);
    EXPECT_TRUE(soon([&looks] { return looks > 3; }));
    watch.setActive(false);
    const int before = looks;
    QTest::qWait(300);
    EXPECT_EQ(looks, before);
}

TEST_F(MachineWatchTest, KnowsTheFileThatTheToolWouldChoose)
{
    watch.look();
    EXPECT_FALSE(watch.isDefaultFile());
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("function")));
    const QString beside = folder.filePath(QStringLiteral("function/simulated_computer.state"));
    ASSERT_TRUE(QFile::link(stateFile, beside));
    MachineWatch named(stateFile, nullptr, folder.path());
    named.look();
    EXPECT_TRUE(named.isDefaultFile());
    // A terminal in which the command is pasted has another environment.
    qputenv("TARN_SIMULATOR_STATE", stateFile.toUtf8());
    MachineWatch unnamed({}, nullptr, folder.path());
    unnamed.look();
    EXPECT_TRUE(unnamed.hasMachine());
    EXPECT_FALSE(unnamed.isDefaultFile());
    qunsetenv("TARN_SIMULATOR_STATE");
}
