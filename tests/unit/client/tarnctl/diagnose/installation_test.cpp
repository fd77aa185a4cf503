#include "client/tarnctl/diagnose/installation.h"

#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <QCoreApplication>

using namespace tarnctl;
using tarnClientTest::SoundComputer;

TEST(InstallationTest, IsWhereTheServiceIsRegistered)
{
    SoundComputer computer;
    computer.installed = "C:/Installed";
    ServiceEntry service;
    service.command = "\"C:/Program Files/Tarn Service/TarnService.exe\" -x";
    EXPECT_EQ(Installation::of(computer, service).folder(), "C:/Program Files/Tarn Service");
    EXPECT_EQ(Installation::of(computer, {}).folder(), "C:/Installed");
    computer.installed.clear();
    EXPECT_EQ(Installation::of(computer, {}).folder(), QCoreApplication::applicationDirPath());
}

TEST(InstallationTest, TakesTheProgramOutOfACommand)
{
    EXPECT_EQ(programOf(R"("C:\a b\TarnService.exe" -x)"), R"(C:\a b\TarnService.exe)");
    EXPECT_EQ(programOf(R"(C:\a b\TarnService.exe -x)"), R"(C:\a b\TarnService.exe)");
    EXPECT_EQ(programOf(R"( C:\a b\TarnService.EXE)"), R"(C:\a b\TarnService.EXE)");
    EXPECT_EQ(programOf("/opt/TarnService"), "/opt/TarnService");
    EXPECT_EQ(programOf(""), "");
}
