#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "end_to_end/test_system.h"
#include "support/time_bound.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::waitUntil;

namespace {

// Stops the service and expects it to go promptly with exit code 0.
void expectPromptStop(ServiceProcess &service)
{
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(service.stop(), 0) << service.log().right(2000).toStdString();
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
}

} // namespace

TEST(Lifecycle, SaysWhatItDoesAtItsStart)
{
    ServiceProcess service;
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(service.start());
    EXPECT_GE(timer.elapsed(), 4000);
    QStringList lines = service.logLines();
    const QString rule(56, QLatin1Char('-'));
    EXPECT_EQ(lines.mid(0, 5), QStringList(5, rule));
    EXPECT_EQ(lines.at(5), R"(Service "\"TarnService\"" is not running.)");
    EXPECT_EQ(lines.at(6), R"(Tarn Service is running as  "1.40" !)");
    EXPECT_EQ(
        lines.at(7), QStringLiteral("sourcePath:  \"%1\"").arg(QDir(service.path(".")).canonicalPath()));
    EXPECT_EQ(lines.at(8), "0");
    EXPECT_TRUE(lines.at(9).startsWith("Main Thread:  "));
    EXPECT_EQ(lines.mid(10, 4),
        QStringList({"TarnService::start", "dirverControllerHal object is create!",
            "open out32Func and inp32Func is sucessful!", "Library loaded"}));
    EXPECT_TRUE(lines.at(14).startsWith("TarnPipeServer ThreadID():  "));
    EXPECT_TRUE(service.log().contains("GraphicsAccessoryManager object is created."));
    expectPromptStop(service);
    EXPECT_TRUE(service.log().contains("TarnService::stop\nservice is Finish!\n"));
    EXPECT_TRUE(service.log().contains("EcDirverReader object is kill!"));
}

TEST(Lifecycle, WorksInItsOwnFolderWhereverItIsStartedFrom)
{
    ServiceProcess service;
    ASSERT_TRUE(service.launch({"-e"}, QDir::rootPath()));
    ASSERT_TRUE(service.waitForLog("Library loaded"));
    ASSERT_TRUE(service.waitForLog("getAccessoryTypeForFirst finish normal."));
    expectPromptStop(service);
}

TEST(Lifecycle, EndsOnAnInterruptWithAClientConnected)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    EXPECT_EQ(client.answer("getAccessoryType"), "disconnected");
    QElapsedTimer timer;
    timer.start();
    tarnTest::requestInterrupt(service.process);
    ASSERT_TRUE(service.waitForEnd(15000));
    EXPECT_LT(timer.elapsed(), tarnTest::allowedMs(tarnTest::promptStopMs));
    EXPECT_EQ(service.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(service.process.exitCode(), 0);
}

TEST(Lifecycle, EndsInOrderWhenItsTerminalIsClosed)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    tarnTest::closeTerminal(service.process);
    ASSERT_TRUE(service.waitForEnd(tarnTest::allowedMs(tarnTest::promptStopMs)));
    EXPECT_EQ(service.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(service.process.exitCode(), 0);
    EXPECT_TRUE(service.log().contains("TarnService::stop\nservice is Finish!\n"));
    EXPECT_TRUE(service.log().contains("EcDirverReader object is kill!"));
}

TEST(Lifecycle, EndsDuringItsStart)
{
    ServiceProcess service;
    ASSERT_TRUE(service.launch({"-exec"}));
    ASSERT_TRUE(service.waitForLog("is not running."));
    expectPromptStop(service);
    EXPECT_FALSE(service.log().contains("TarnService::start"));
}

TEST(Lifecycle, AnActionThatIsCutShortDoesNotPassForDone)
{
    ServiceProcess service;
    ASSERT_TRUE(service.launch({"-install"}));
    ASSERT_TRUE(service.waitForLog("is not running."));
    tarnTest::requestInterrupt(service.process);
    ASSERT_TRUE(service.waitForEnd(tarnTest::allowedMs(tarnTest::promptStopMs)));
    EXPECT_EQ(static_cast<signed char>(service.process.exitCode()), -1);
    EXPECT_FALSE(service.log().contains("installed"));
}

TEST(Lifecycle, EndsWhileTheEcIsStuck)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    service.breakDown("ibf-stuck");
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    client.write(R"({"cmd":"getMcuVersion"})");
    ASSERT_TRUE(service.waitForLog("\"getMcuVersion\""));
    expectPromptStop(service);
}

TEST(Lifecycle, EndsWhileTheEcHasNeverAnswered)
{
    ServiceProcess service;
    service.breakDown("no-answer");
    ASSERT_TRUE(service.launch({"-exec"}));
    ASSERT_TRUE(service.waitForLog("ec reader not normal, begin to reload dll."));
    expectPromptStop(service);
    EXPECT_FALSE(service.log().contains("getAccessoryTypeForFirst finish normal."));
}

TEST(Lifecycle, EndsAtOnceWithoutAPortLibraryThatWorks)
{
    for (const bool isThere : {false, true}) {
        ServiceProcess service;
        ASSERT_TRUE(QFile::remove(service.path("function/inpoutx64.dll")));
        if (isThere)
            service.write("function/inpoutx64.dll", "broken");
        ASSERT_TRUE(service.launch({"-exec"}));
        ASSERT_TRUE(service.waitForEnd());
        EXPECT_TRUE(service.process.exitStatus() == QProcess::CrashExit || service.process.exitCode() != 0);
        EXPECT_TRUE(service.log().endsWith("Cannot load library\n"))
            << service.log().right(300).toStdString();
    }
}

TEST(Lifecycle, SaysThatItCannotStartOutsideTheManager)
{
    ServiceProcess service;
    ASSERT_TRUE(service.launch({}));
    ASSERT_TRUE(service.waitForEnd());
    EXPECT_TRUE(service.log().endsWith("The service Tarn Service could not start\n"));
    EXPECT_EQ(static_cast<signed char>(service.process.exitCode()), -4);
}

TEST(Lifecycle, PrintsItsUsage)
{
    ServiceProcess service;
    ASSERT_TRUE(service.launch({"-help"}));
    ASSERT_TRUE(service.waitForEnd());
    EXPECT_EQ(service.process.exitCode(), 0);
    EXPECT_TRUE(
        service.log().contains(" -[i|u|e|t|p|r|c|v|h]\n\t-i(nstall) [account] [password]\t: Install"));
    EXPECT_FALSE(service.log().contains("EcDirverReader"));
}
