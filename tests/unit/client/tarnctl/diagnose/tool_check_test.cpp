#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

using ToolsCheck = tarnClientTest::Diagnosis;

TEST_F(ToolsCheck, AreToldWhileTheyRun)
{
    const QString advice = " -> wait for its end, never end it by hand; nothing else reaches what it flashes";
    computer.programs["IFU_XE.exe"] = {{path("function/EC/IFU_XE.exe"), 77, started}};
    EXPECT_EQ(lineOf("running EC tool"), "bad: it still runs, process 77" + advice);
    EXPECT_EQ(lineOf("running flasher"), "good: none runs");
    computer.programs["stm32flash.exe"] = {{path("function/MCU/stm32flash.exe"), 78, started}};
    EXPECT_EQ(lineOf("running flasher"), "bad: it still runs, process 78" + advice);
}

TEST_F(ToolsCheck, OfOthersDoNotCount)
{
    write("elsewhere/IFU_XE.exe", "MZ");
    computer.programs["IFU_XE.exe"] = {{path("elsewhere/IFU_XE.exe"), 77, started}};
    EXPECT_EQ(lineOf("running EC tool"), "good: none runs");
    computer.programs["IFU_XE.exe"] << TimedProgram {{}, 78, started};
    EXPECT_EQ(lineOf("running EC tool"),
        "unknown: one runs, and its folder may not be read -> run tarnctl as administrator");
    computer.areProcessesListed = false;
    EXPECT_EQ(
        lineOf("running EC tool"), "unknown: the processes cannot be listed -> run tarnctl as administrator");
    EXPECT_EQ(
        lineOf("running flasher"), "unknown: the processes cannot be listed -> run tarnctl as administrator");
}
