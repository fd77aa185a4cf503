#include "../update/update_fixture.h"

#include "pipe/tarn_pipe_server.h"
#include "support/pipe_peer.h"
#include "support/process_ending.h"

#include <thread>

using namespace tarnDeviceInfos;
using tarnPipeServer::TarnPipeServer;

class FirmwareCommands : public tarnTest::UpdateTest
{
protected:
    FirmwareCommands()
        : server(TarnPipeServer::instance())
    {
        machine.log.clear();
    }
    QString ask(const char *command, const char *data = "")
    {
        return server->dispatch(QString(R"({"cmd":"%1","data":"%2"})").arg(command, data).toUtf8());
    }
    static QString reply(const char *command, const char *data)
    {
        return QString(R"({"cmd":"%1","data":"%2"})").arg(command, data);
    }
    // Nothing but the end of the process ends the hold of an EC update.
    static void giveBackEc()
    {
        if (ecAccessMutex.isLocked())
            ecAccessMutex.unlock();
    }

    TarnPipeServer *server;
};

TEST_F(FirmwareCommands, UpdateTheMcuAndTellItsVersion)
{
    installFlasher("exit 0");
    download("new");
    EXPECT_EQ(ask("requestMcuUpdate", "fw.bin"),
        R"({"cmd":"requestMcuUpdate","data":"successed","mcuVer":"2.05"})");
    EXPECT_EQ(ask("requestMcuUpdate", "fw.bin"), reply("requestMcuUpdate", "failed"));
    EXPECT_EQ(ask("requestMcuUpdate", "../fw.bin"), reply("requestMcuUpdate", "failed"));
}

TEST_F(FirmwareCommands, EnterAndLeaveTheUpdateMode)
{
    EXPECT_EQ(ask("requestEnterMcuUpdateMode"), reply("requestEnterMcuUpdateMode", "successed"));
    EXPECT_TRUE(machine.log.contains("Enter Enter Mcu Update Mode"));
    EXPECT_EQ(ask("requestLeaveMcuUpdateMode"), reply("requestLeaveMcuUpdateMode", "2.05"));
    EXPECT_TRUE(machine.log.contains("Enter Leave Mcu Update Mode"));
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

TEST_F(FirmwareCommands, AnswerWithTheVersionAlthoughNothingWasEntered)
{
    EXPECT_EQ(ask("requestLeaveMcuUpdateMode"), reply("requestLeaveMcuUpdateMode", "2.05"));
    EXPECT_TRUE(machine.log.contains("W: The MCU was not in update mode."));
    EXPECT_TRUE(machine.traffic().filter("06C1").isEmpty());
}

TEST_F(FirmwareCommands, RefuseTheUpdateModeWithoutAKVane)
{
    attachAccessory(ACCESSORY_DOCK);
    EXPECT_EQ(ask("requestEnterMcuUpdateMode"), reply("requestEnterMcuUpdateMode", "failed"));
}

TEST_F(FirmwareCommands, RaiseTheHoldOfAnEcUpdate)
{
    EXPECT_EQ(ask("requestStartEcUpdate"), reply("requestStartEcUpdate", "successed"));
    EXPECT_TRUE(monitor->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    EXPECT_EQ(ask("requestStartEcUpdate"),
        reply("requestStartEcUpdate", "successed")); // without waiting for the hold of the first
    giveBackEc();
}

TEST_F(FirmwareCommands, CannotRaiseTheHoldWhileTheProcessEnds)
{
    tarnTest::letProcessEnd();
    EXPECT_EQ(ask("requestStartEcUpdate"), reply("requestStartEcUpdate", "failed"));
}

TEST_F(FirmwareCommands, UpdateTheEcUnderTheHold)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    installTool("function/EC/IFU_XE.exe", "cp uiset.ini seen.ini; cp fw.bin seen.bin; exit 1");
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "successed"));
    EXPECT_EQ(machine.folder.read("function/EC/seen.ini"), "BinName=fw.bin\n");
    EXPECT_EQ(machine.folder.read("function/EC/seen.bin"), "new");
    EXPECT_FALSE(monitor->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked()); // EC traffic comes back with a restart only
    giveBackEc();
}

TEST_F(FirmwareCommands, HoldTheEcWhileItsToolRuns)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    installTool("function/EC/IFU_XE.exe", "touch running; while [ ! -e go ]; do sleep 0.01; done");
    std::thread update(
        [this] { EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "successed")); });
    EXPECT_TRUE(tarnTest::waitUntil([this] { return exists("function/EC/running"); }));
    EXPECT_TRUE(monitor->isEcUpdating());
    EXPECT_TRUE(ecAccessMutex.isLocked());
    machine.folder.write("function/EC/go", "");
    update.join();
    EXPECT_FALSE(monitor->isEcUpdating());
    giveBackEc();
}

TEST_F(FirmwareCommands, RunTheToolsOfTwoEcUpdatesOneAfterTheOther)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("first", "a.bin");
    download("second", "b.bin");
    installTool("function/EC/IFU_XE.exe",
        "[ -e busy ] && echo overlap >>told; touch busy; sleep 0.1; cat uiset.ini >>told; rm busy");
    std::thread other([this] { ask("requestEcUpdate", "a.bin"); });
    ask("requestEcUpdate", "b.bin");
    other.join();
    const QByteArray told = machine.folder.read("function/EC/told");
    EXPECT_TRUE(told == "BinName=a.bin\nBinName=b.bin\n" || told == "BinName=b.bin\nBinName=a.bin\n")
        << told.toStdString();
    giveBackEc();
}

// Either tool stands in the way of either update, before anything is touched.
TEST_F(FirmwareCommands, RefuseAnUpdateBesideAToolOfAnEarlierRun)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    for (const char *tool : {"function/MCU/stm32flash.exe", "function/EC/IFU_XE.exe"}) {
        installTool(tool, untilGo);
        QProcess orphan;
        orphan.setWorkingDirectory(machine.folder.path(QFileInfo(tool).path()));
        orphan.start(machine.folder.path(tool), QStringList());
        const QString folder = QFileInfo(tool).path();
        ASSERT_TRUE(tarnTest::waitUntil([&] { return exists(folder + "/running"); }));
        machine.log.clear();
        machine.traffic();
        for (const char *command : {"requestEcUpdate", "requestMcuUpdate", "requestEnterMcuUpdateMode"}) {
            EXPECT_EQ(ask(command, "fw.bin"), reply(command, "failed"));
            EXPECT_EQ(machine.folder.read("function/EC/uiset.ini"), "BinName=old\n");
            EXPECT_TRUE(exists("Downloads/fw.bin"));
            EXPECT_FALSE(exists("function/EC/fw.bin"));
            EXPECT_FALSE(exists("function/MCU/fw.bin"));
            EXPECT_FALSE(ecAccessMutex.isLocked());
        }
        EXPECT_TRUE(machine.traffic().isEmpty());
        EXPECT_EQ(machine.log.lines()
                      .filter(QString("W: Refused, because this tool is running already: \"./%1\"").arg(tool))
                      .size(),
            3);
        machine.folder.write(folder + "/go", "");
        orphan.waitForFinished();
    }
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "successed"));
    giveBackEc();
}

TEST_F(FirmwareCommands, StartNoToolWhileTheProcessEnds)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    installTool("function/EC/IFU_XE.exe", "touch ran");
    tarnTest::letProcessEnd();
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_FALSE(exists("function/EC/ran"));
}

TEST_F(FirmwareCommands, StartNoToolUnderAnOlderHoldWhileTheProcessEnds)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    installTool("function/EC/IFU_XE.exe", "touch ran");
    EXPECT_EQ(ask("requestStartEcUpdate"), reply("requestStartEcUpdate", "successed"));
    tarnTest::letProcessEnd();
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_FALSE(exists("function/EC/ran"));
    giveBackEc();
}

TEST_F(FirmwareCommands, UpdateTheEcAfterItsStartWithoutWaitingForThemselves)
{
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    download("new");
    installTool("function/EC/IFU_XE.exe", "exit 0");
    EXPECT_EQ(ask("requestStartEcUpdate"), reply("requestStartEcUpdate", "successed"));
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "successed"));
    EXPECT_FALSE(monitor->isEcUpdating());
    giveBackEc();
}

TEST_F(FirmwareCommands, FailBeforeTheToolAndLeaveTheEcAlone)
{
    download("new");
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_TRUE(machine.log.contains("write uiset.ini file failed!"));
    EXPECT_TRUE(exists("Downloads/fw.bin"));
    machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
    EXPECT_EQ(ask("requestEcUpdate", "missing.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_EQ(ask("requestEcUpdate", "..\\\\fw.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_FALSE(ecAccessMutex.isLocked());
}

TEST_F(FirmwareCommands, LowerTheHoldAfterAFailure)
{
    EXPECT_EQ(ask("requestStartEcUpdate"), reply("requestStartEcUpdate", "successed"));
    EXPECT_EQ(ask("requestEcUpdate", "fw.bin"), reply("requestEcUpdate", "failed"));
    EXPECT_FALSE(monitor->isEcUpdating());
    giveBackEc();
}
