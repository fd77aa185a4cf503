#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/gui_stand_in/stand_in.h"
#include "simulator/tool/verb_table.h"
#include "tarnsim_session.h"

#include <sstream>
#include <thread>

using namespace tarnSimulator;

class TarnsimDevices : public tarnSimulatorTest::TarnsimSession
{
protected:
    [[nodiscard]] Device device(const char *name)
    {
        return computer->devices().device(*computer->devices().find(name));
    }
};

TEST_F(TarnsimDevices, AreListed)
{
    EXPECT_EQ(run("devices"), Done);
    EXPECT_TRUE(said("gpu         display  absent   stopped (problem 22)  NVIDIA GeForce RTX 4060 Ti"));
    computer->attach(*findAccessory("graphics16g"));
    EXPECT_EQ(run("devices"), Done);
    EXPECT_TRUE(said("gpu         display  present"));
    EXPECT_EQ(run("show"), Done);
    EXPECT_TRUE(said("gpu stopped (problem 22)"));
}

TEST_F(TarnsimDevices, AreChanged)
{
    EXPECT_EQ(run("device gpu started on"), Done);
    EXPECT_EQ(run("device gpu problem 43"), Done);
    EXPECT_EQ(run("device gpu description Basic"), Done);
    EXPECT_EQ(run("device gpu hardware-id PCI\\VEN_1002"), Done);
    EXPECT_EQ(run("device gpu instance-id PCI\\1"), Done);
    EXPECT_EQ(run("device gpu kind other"), Done);
    EXPECT_EQ(run("device gpu place nowhere"), Done);
    const Device gpu = device("gpu");
    EXPECT_TRUE(gpu.started);
    EXPECT_EQ(gpu.problem, 43U);
    EXPECT_EQ(gpu.description, "Basic");
    EXPECT_EQ(gpu.hardwareId, "PCI\\VEN_1002");
    EXPECT_EQ(gpu.instanceId, "PCI\\1");
    EXPECT_EQ(gpu.kind, DeviceKind::Other);
    EXPECT_EQ(gpu.place, DevicePlace::Nowhere);
}

TEST_F(TarnsimDevices, SayWhatTheyMayBe)
{
    EXPECT_EQ(run("device gpu started maybe"), WrongUsage);
    EXPECT_TRUE(complained("started cannot be \"maybe\"; allowed: on or off"));
    EXPECT_EQ(run("device gpu problem -1"), WrongUsage);
    EXPECT_EQ(run("device gpu place shelf"), WrongUsage);
    EXPECT_TRUE(complained("computer, box or nowhere"));
    EXPECT_EQ(run("device gpu colour red"), WrongUsage);
    EXPECT_TRUE(complained("there is no key \"colour\"; there are: description, hardware-id"));
    EXPECT_EQ(run("device mouse started on"), WrongUsage);
    EXPECT_TRUE(complained("there is no device \"mouse\"; there are: graphics, gpu, audio, gpu-audio"));
    EXPECT_EQ(run(QString("device gpu description %1").arg(QString(200, 'x'))), WrongUsage);
    EXPECT_EQ(device("gpu").description, "NVIDIA GeForce RTX 4060 Ti");
}

TEST_F(TarnsimDevices, ComeAndGo)
{
    EXPECT_EQ(run("add-device second display RTX4060"), Done);
    EXPECT_EQ(device("second").description, "RTX4060");
    EXPECT_EQ(run("add-device second display RTX4060"), WrongUsage);
    EXPECT_TRUE(complained("the name \"second\" is taken; there are: "));
    EXPECT_TRUE(complained(", second\n"));
    EXPECT_EQ(run(QString("add-device %1 display RTX4060").arg(QString(32, 'n'))), WrongUsage);
    EXPECT_TRUE(complained("a name has 1 to 31 characters, \"nnn"));
    EXPECT_TRUE(complained("nnn\" has 32\n"));
    EXPECT_EQ(run("add-device third toaster x"), WrongUsage);
    EXPECT_TRUE(complained("there is no kind of device \"toaster\"; there are: display, audio, other"));
    EXPECT_EQ(run(QString("add-device third other %1").arg(QString(200, 'x'))), WrongUsage);
    EXPECT_EQ(run("remove-device second"), Done);
    EXPECT_FALSE(computer->devices().find("second"));
    EXPECT_EQ(run("remove-device second"), WrongUsage);
    for (int added = 4; added < 16; ++added)
        EXPECT_EQ(run(QString("add-device d%1 other x").arg(added)), Done);
    EXPECT_EQ(run("add-device last other x"), Failed);
    EXPECT_TRUE(complained("there are 16 devices already"));
}

TEST_F(TarnsimDevices, FailWhereTheyAreTold)
{
    EXPECT_EQ(run("fault fail-device-enable gpu 1"), Done);
    FaultPanel &faults = computer->faults();
    EXPECT_FALSE(faults.refusesDevice(Fault::FailDeviceEnable, 0));
    EXPECT_FALSE(faults.refusesDevice(Fault::FailDeviceEnable, 1));
    EXPECT_TRUE(faults.refusesDevice(Fault::FailDeviceEnable, 1));
    EXPECT_EQ(run("fault fail-device-status"), Done);
    EXPECT_TRUE(faults.refusesDevice(Fault::FailDeviceStatus, 3));
    EXPECT_EQ(run("fault fail-device-id on 5"), Done);
    EXPECT_EQ(run("faults"), Done);
    EXPECT_TRUE(said("every device, after 5 more calls"));
    EXPECT_TRUE(said("fail-device-enable       gpu      "));
    EXPECT_EQ(run("fault fail-device-id mouse"), WrongUsage);
    EXPECT_TRUE(complained("on (every device), off, or a device and how many calls succeed before"));
    EXPECT_EQ(run("fault fail-device-id gpu x"), WrongUsage);
    EXPECT_EQ(run("fault fail-device-enable off"), Done);
    EXPECT_FALSE(faults.isOn(Fault::FailDeviceEnable));
    EXPECT_EQ(run("fault fail-device-list 1"), Done);
    EXPECT_EQ(run("faults"), Done);
    EXPECT_TRUE(said("fail-device-list         after 1 more lists "));
    EXPECT_FALSE(faults.refusesList());
    EXPECT_TRUE(faults.refusesList());
}

TEST_F(TarnsimDevices, SettingsOfTheDesktop)
{
    for (const char *answer : {"yes", "no", "wait", "7"}) {
        EXPECT_EQ(run(QString("set gui-answer %1").arg(answer)), Done);
        EXPECT_EQ(run("get gui-answer"), Done);
        EXPECT_EQ(output.trimmed(), answer);
    }
    EXPECT_EQ(run("set gui-answer perhaps"), WrongUsage);
    EXPECT_EQ(run("set session service"), Done);
    EXPECT_TRUE(computer->desktop().isServiceSession());
    EXPECT_EQ(run("get session"), Done);
    EXPECT_EQ(output.trimmed(), "service");
    EXPECT_EQ(run("set session mine"), WrongUsage);
    EXPECT_EQ(run("reset"), Done);
    EXPECT_FALSE(computer->desktop().isServiceSession());
}

// The program that stands in for the GUI, on the machine of the session.
class GuiStandIn : public TarnsimDevices
{
protected:
    void SetUp() override
    {
        TarnsimDevices::SetUp();
        qputenv("TARN_SIMULATOR_STATE", stateFile.toUtf8());
    }
    void TearDown() override { qunsetenv("TARN_SIMULATOR_STATE"); }

    void waitForWindow()
    {
        while (computer->desktop().windowsOpen() == 0)
            std::this_thread::yield();
    }
    int show(const char *programSwitch) { return runStandIn(programSwitch, "TarnServiceGui.exe", terminal); }

    std::ostringstream terminal;
};

TEST_F(GuiStandIn, AnswersAsItIsTold)
{
    EXPECT_EQ(show("--disengaged-graphics"), 1);
    computer->desktop().setAnswer(0);
    EXPECT_EQ(show("--graphics-driver-error"), 0);
    EXPECT_EQ(computer->desktop().windowsShown(), 2U);
    EXPECT_EQ(computer->desktop().windowsOpen(), 0U);
    EXPECT_EQ(run("get gui-window"), Done);
    EXPECT_EQ(output.trimmed(), "--graphics-driver-error");
    EXPECT_NE(terminal.str().find("asks whether the graphics box may be removed"), std::string::npos);
    EXPECT_NE(terminal.str().find("--graphics-driver-error ends with exit code 0"), std::string::npos);
}

TEST_F(GuiStandIn, WaitsForAnAnswer)
{
    computer->desktop().setAnswer(Desktop::waits);
    std::thread user([this] {
        waitForWindow();
        computer->desktop().setAnswer(1);
    });
    EXPECT_EQ(show("--disengaged-graphics"), 1);
    user.join();
    EXPECT_NE(terminal.str().find("answer with: tarnsim set gui-answer yes|no"), std::string::npos);
}

TEST_F(GuiStandIn, EndsWhenItsMachineGoesAway)
{
    computer->desktop().setAnswer(Desktop::waits);
    std::thread user([this] {
        waitForWindow();
        QFile::remove(stateFile);
    });
    EXPECT_EQ(show("--disengaged-graphics"), 0);
    user.join();
}

TEST_F(GuiStandIn, SurvivesAResetOfTheMachine)
{
    computer->desktop().setAnswer(Desktop::waits);
    std::thread user([this] {
        waitForWindow();
        computer->reset();
    });
    EXPECT_EQ(show("--disengaged-graphics"), 1);
    user.join();
    EXPECT_EQ(computer->desktop().windowsOpen(), 0U);
}

TEST_F(GuiStandIn, IsNotCountedWhenItWasKilled)
{
    const auto openWindows = [this] {
        EXPECT_EQ(run("get gui-open"), Done);
        return output.trimmed();
    };
    Desktop desktop = computer->desktop();
    desktop.windowOpened("--disengaged-graphics");
    EXPECT_EQ(openWindows(), "1");
    machine->state().guiSeenMs.fetch_sub(1000); // as if its last sign of life were a second old
    EXPECT_EQ(openWindows(), "0");
    desktop.windowOpened("--disengaged-graphics");
    EXPECT_EQ(openWindows(), "1"); // the killed one has been forgotten
    desktop.windowClosed();
    EXPECT_EQ(openWindows(), "0");
}

TEST_F(GuiStandIn, IsCountedWhenTheTimeOfDayIsPutBackALittle)
{
    Desktop desktop = computer->desktop();
    desktop.windowOpened("--disengaged-graphics");
    machine->state().guiSeenMs.fetch_add(500);
    EXPECT_EQ(desktop.windowsOpen(), 1U);
    machine->state().guiSeenMs.fetch_add(10000); // so far back that it says nothing any more
    EXPECT_EQ(desktop.windowsOpen(), 0U);
}

TEST_F(GuiStandIn, IsCountedForAsLongAsItWaits)
{
    computer->desktop().setAnswer(Desktop::waits);
    std::thread user([this] {
        waitForWindow();
        machine->state().guiSeenMs.store(1); // long ago
        waitForWindow();
        computer->desktop().setAnswer(1);
    });
    EXPECT_EQ(show("--disengaged-graphics"), 1);
    user.join();
}

TEST_F(GuiStandIn, KnowsItsSwitches)
{
    EXPECT_EQ(show("--surprise"), wrongSwitch);
    EXPECT_EQ(computer->desktop().windowsShown(), 0U);
    EXPECT_NE(terminal.str().find("there is no window for \"--surprise\""), std::string::npos);
}

TEST_F(GuiStandIn, NeedsAMachine)
{
    qputenv("TARN_SIMULATOR_STATE", "/nowhere/machine.state");
    EXPECT_EQ(show("--disengaged-graphics"), wrongSwitch);
    qunsetenv("TARN_SIMULATOR_STATE");
    EXPECT_EQ(show("--disengaged-graphics"), wrongSwitch); // nor is there one beside it
}
