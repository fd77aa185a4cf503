#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QFile>

using namespace tarnctl;

using RegistrationCheck = tarnClientTest::Diagnosis;

TEST_F(RegistrationCheck, TellsThatTheServiceIsNotKnown)
{
    computer.installed = folder.path();
    computer.entry = {};
    EXPECT_EQ(lineOf("registered"), "good: not needed, this system has no service manager");
    computer.entry.known = ServiceEntry::Known::Unreadable;
    EXPECT_EQ(
        lineOf("registered"), "unknown: the service manager does not tell -> run tarnctl as administrator");
    computer.entry.known = ServiceEntry::Known::No;
    EXPECT_EQ(lineOf("registered"),
        "unknown: no, the program runs in a console -> nothing, if that is intended; the installer registers "
        "it");
    EXPECT_EQ(lineOf("account"), QString());
    EXPECT_EQ(lineOf("running"), "good: since 2026-11-21 11:00:00, process 1234");
    computer.programs.clear();
    EXPECT_EQ(lineOf("registered"),
        "bad: no, Windows does not know the service -> run the installer, or \"TarnService.exe -install\" as "
        "administrator");
}

TEST_F(RegistrationCheck, TellsThatTheProgramIsGone)
{
    remove("TarnService.exe");
    EXPECT_EQ(lineOf("registered"),
        "bad: as \"FOLDER/TarnService.exe\", which is not there -> run the installer again");
}

TEST_F(RegistrationCheck, WantsQuotesAroundBlanks)
{
    write("with blank/TarnService.exe", "MZ");
    const QString program = path("with blank/TarnService.exe");
    computer.entry.command = program;
    EXPECT_EQ(lineOf("registered"),
        "bad: as FOLDER/with blank/TarnService.exe, without quotes, so Windows first tries the part before "
        "each "
        "blank -> sc.exe config \"Tarn Service\" binPath= \"\\\"FOLDER/with blank/TarnService.exe\\\"\"");
    computer.entry.command = '"' + program + '"';
    EXPECT_EQ(lineOf("registered"), "good: as \"FOLDER/with blank/TarnService.exe\"");
    computer.entry.command = path("TarnService.exe") + " -some argument";
    EXPECT_EQ(lineOf("registered"), "good: as FOLDER/TarnService.exe -some argument");
}

TEST_F(RegistrationCheck, KnowsTheStartTypes)
{
    computer.entry.start = ServiceEntry::Start::OnDemand;
    EXPECT_EQ(lineOf("start type"), "good: on demand, so not with the computer");
    computer.entry.start = ServiceEntry::Start::Disabled;
    EXPECT_EQ(lineOf("start type"), "bad: disabled -> sc.exe config \"Tarn Service\" start= auto");
    computer.entry.start = ServiceEntry::Start::Other;
    EXPECT_EQ(lineOf("start type"),
        "unknown: one that tarnctl does not know -> sc.exe config \"Tarn Service\" start= auto");
}

TEST_F(RegistrationCheck, WantsTheSystemsAccount)
{
    computer.entry.account = ".\\somebody";
    EXPECT_EQ(lineOf("account"),
        "bad: .\\somebody, which cannot ask the user at the screen and may not be allowed to use the port "
        "library -> "
        "sc.exe config \"Tarn Service\" obj= LocalSystem");
    computer.entry.account = "localsystem";
    EXPECT_EQ(lineOf("account"), "good: localsystem");
}

TEST_F(RegistrationCheck, WantsTheServiceStartedAgain)
{
    computer.entry.restarts = 0;
    EXPECT_EQ(lineOf("recovery"),
        "bad: the service is not started again when it crashes -> sc.exe failure \"Tarn Service\" reset= "
        "86400 "
        "actions= "
        "restart/5000/restart/5000/restart/60000");
    computer.entry.restarts = 1;
    computer.entry.restartsAfterFailedStop = false;
    EXPECT_EQ(lineOf("recovery"),
        "bad: the service is not started again when it fails while it starts -> sc.exe failureflag \"Tarn "
        "Service\" 1");
    computer.entry.restartsAfterFailedStop = {};
    EXPECT_EQ(lineOf("recovery"), "unknown: the system does not tell -> run tarnctl as administrator");
    computer.entry.restartsAfterFailedStop = true;
    computer.entry.restarts = {};
    EXPECT_EQ(lineOf("recovery"), "unknown: the system does not tell -> run tarnctl as administrator");
}
