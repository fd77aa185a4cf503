#include "graphics/gui_launcher.h"

#include "platform/paths.h"
#include "platform/process_end.h"
#include "platform/user_session.h"

#include <QCoreApplication>
#include <QDebug>

#include <array>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using tarnPlatform::Launch;
using tarnPlatform::LaunchStage;
using tarnPlatform::UserSession;

constexpr auto answerTimeout = 30000ms;
constexpr int exitCodeNo = 0;
constexpr int exitCodeYes = 1;

// Log texts for a program that did not run to its end. In the order of LaunchStage.
constexpr std::array failures = {
    "GraphicsActive_log & GraphicsDisengaged_log: No active session found",
    "GraphicsActive_log & GraphicsDisengaged_log: Failed to query user token",
    "GraphicsActive_log & GraphicsDisengaged_log: Failed to duplicate token",
    "GraphicsActive_log & GraphicsDisengaged_log: Failed to create process",
    "GraphicsActive_log & GraphicsDisengaged_log: Failed to get exit code",
};
static_assert(failures.size() == static_cast<std::size_t>(LaunchStage::Ended));

QString guiProgram()
{
    return QCoreApplication::applicationDirPath() + tarnPlatform::path::guiProgramSuffix;
}

// An exit code is a DWORD in the service session and an int in a user's session.
int answerOf(qint64 exitCode)
{
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: exitCode for Gui program is " << exitCode;
    if (exitCode == exitCodeNo) {
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: click no!!!";
        return 0;
    }
    if (exitCode == exitCodeYes) {
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: click yes!!!";
        return 1;
    }
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: exit code:" << exitCode;
    return 0;
}

int launchForConsoleUser(const QString &programSwitch)
{
    const Launch launch = UserSession::system().runForConsoleUser(guiProgram(), programSwitch);
    if (launch.stage == LaunchStage::Ended)
        return answerOf(launch.exitCode);
    qDebug() << failures[static_cast<std::size_t>(launch.stage)];
    return 0;
}

int launchInOwnSession(const QString &programSwitch)
{
    qDebug()
        << "GraphicsActive_log & GraphicsDisengaged_log: Starting TarnServiceGui in Debug or Release mode.";
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: cmd：" << programSwitch;
    UserSession &session = UserSession::system();
    if (programSwitch == QStringLiteral("--disengaged-graphics"))
        return answerOf(session.run(guiProgram(), programSwitch, answerTimeout));
    if (!session.startDetached(guiProgram(), programSwitch))
        qWarning() << failures[static_cast<std::size_t>(LaunchStage::NoProcess)] << guiProgram();
    return 0;
}

} // namespace

int launchGuiProgram(const QString &programSwitch)
{
    if (tarnPlatform::isProcessEnding()) {
        qWarning() << "GraphicsActive_log & GraphicsDisengaged_log: The service ends, so nobody is shown"
                   << programSwitch;
        return 0;
    }
    if (UserSession::system().isServiceSession())
        return launchForConsoleUser(programSwitch);
    return launchInOwnSession(programSwitch);
}

} // namespace tarnAccessoryManager
