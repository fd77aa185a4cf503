#include "platform/user_session.h"

#include "platform/processes.h"
#include "simulator/computer_control.h"
#include "simulator/platform/simulated_computer.h"

#include <QDir>

namespace tarnPlatform {
namespace {

using tarnSimulator::Fault;
using tarnSimulator::FaultPanel;

struct LaunchFault
{
    Fault fault;
    LaunchStage stage;
};

// What can go wrong before the program runs, in the order in which the steps are taken.
constexpr LaunchFault launchFaults[] = {
    {Fault::NoConsoleSession, LaunchStage::NoActiveSession},
    {Fault::NoUserToken, LaunchStage::NoUserToken},
    {Fault::NoTokenCopy, LaunchStage::NoTokenCopy},
    {Fault::NoGuiProcess, LaunchStage::NoProcess},
};

class SimulatedSession final : public UserSession
{
public:
    [[nodiscard]] bool isServiceSession() const override
    {
        auto *machine = simulatedComputer();
        return machine && tarnSimulator::Desktop(*machine).isServiceSession();
    }

    [[nodiscard]] Launch runForConsoleUser(const QString &program, const QString &argument) override
    {
        auto *machine = simulatedComputer();
        if (!machine)
            return {LaunchStage::NoActiveSession, 0};
        const FaultPanel faults(*machine);
        for (const LaunchFault &step : launchFaults) {
            if (faults.isOn(step.fault))
                return {step.stage, 0};
        }
        TiedProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        if (!process.startTied(startablePath(program), {argument}))
            return {LaunchStage::NoProcess, 0};
        process.waitForFinished(-1);
        if (faults.isOn(Fault::NoGuiExitCode))
            return {LaunchStage::NoExitCode, 0};
        return {LaunchStage::Ended, static_cast<quint32>(exitCodeOf(process))};
    }

    // The user of the simulated computer is the one who runs the service.
    bool asConsoleUser(const std::function<void()> &action) override
    {
        if (consoleUserDownloadFolder().isEmpty())
            return false;
        action();
        return true;
    }

    [[nodiscard]] QString consoleUserDownloadFolder() const override
    {
        auto *machine = simulatedComputer();
        if (!machine || FaultPanel(*machine).isOn(Fault::NoConsoleSession))
            return {};
        return QDir::current().absoluteFilePath(QStringLiteral("console_user/Downloads"));
    }

protected:
    [[nodiscard]] QString startablePath(const QString &program) const override
    {
        QString path = program;
        return path.replace(QStringLiteral("./TarnServiceGui/"), QStringLiteral("/TarnServiceGui/"));
    }
};

} // namespace

UserSession &UserSession::ofSystem()
{
    static SimulatedSession session;
    return session;
}

} // namespace tarnPlatform
