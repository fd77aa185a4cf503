#include "service/qt_service_base.h"

#include "platform/process_end.h"
#include "platform/service_manager.h"

#include <QCoreApplication>
#include <QDebug>

#include <cstdio>
#include <cstring>

namespace {

constexpr int maximumNameLength = 255;
constexpr int exitFailed = -1;
constexpr int exitNotStarted = -4;

constexpr const char *usageText =
    "\n%s -[i|u|e|t|p|r|c|v|h]\n"
    "\t-i(nstall) [account] [password]\t: Install the service, optionally using given "
    "account and password\n"
    "\t-u(ninstall)\t: Uninstall the service.\n"
    "\t-e(xec)\t\t: Run as a regular application. Useful for debugging.\n"
    "\t-t(erminate)\t: Stop the service.\n"
    "\t-p(ause)\t: Pause the service.\n"
    "\t-r(esume)\t: Resume a paused service.\n"
    "\t-c(ommand) num\t: Send command code num to the service.\n"
    "\t-v(ersion)\t: Print version and status information.\n"
    "\t-h(elp)   \t: Show this help\n"
    "\tNo arguments\t: Start the service.\n";

QString usableName(QString name)
{
    if (name.length() > maximumNameLength) {
        qWarning("QtService: 'name' is longer than 255 characters.");
        name.truncate(maximumNameLength);
    }
    if (name.contains(QLatin1Char('\\'))) {
        qWarning("QtService: 'name' contains backslashes '\\'.");
        name.replace(QLatin1Char('\\'), QChar(u'\0'));
    }
    return name;
}

} // namespace

struct QtServiceBase::Option
{
    const char *letter;
    const char *word;
    int (QtServiceBase::*action)();
};

// Compared case-sensitively; anything else runs the service.
const QtServiceBase::Option QtServiceBase::options[] = {
    {"-i", "-install", &QtServiceBase::installService},
    {"-u", "-uninstall", &QtServiceBase::uninstallService},
    {"-v", "-version", &QtServiceBase::printVersion},
    {"-e", "-exec", &QtServiceBase::executeAsApplication},
    {"-t", "-terminate", &QtServiceBase::terminateService},
    {"-p", "-pause", &QtServiceBase::sendPause},
    {"-r", "-resume", &QtServiceBase::sendResume},
    {"-c", "-command", &QtServiceBase::sendUserCommand},
    {"-h", "-help", &QtServiceBase::printHelp},
};

const QtServiceBase::Option *QtServiceBase::chosenOption(int argc, char **argv)
{
    for (const Option &option : options) {
        if (argc > 1 && (std::strcmp(argv[1], option.letter) == 0 || std::strcmp(argv[1], option.word) == 0))
            return &option;
    }
    return nullptr;
}

int QtServiceBase::exitCodeBeforeExec(int argc, char **argv)
{
    const Option *option = chosenOption(argc, argv);
    return option && option->action == &QtServiceBase::executeAsApplication ? 0 : exitFailed;
}

bool QtServiceBase::isToRun(int argc, char **argv)
{
    const Option *option = chosenOption(argc, argv);
    return !option || option->action == &QtServiceBase::executeAsApplication;
}

quint32 QtServiceBase::acceptedControls(ServiceFlags flags)
{
    quint32 controls = tarnPlatform::AcceptsNothing;
    if (!flags.testFlag(CannotBeStopped))
        controls |= tarnPlatform::AcceptsStop;
    if (flags.testFlag(CanBeSuspended))
        controls |= tarnPlatform::AcceptsPauseAndContinue;
    if (flags.testFlag(NeedsStopOnShutdown))
        controls |= tarnPlatform::AcceptsShutdown;
    return controls;
}

QtServiceBase::QtServiceBase(
    int argc, char **argv, const QString &requestedName, tarnPlatform::ServiceManager &serviceManager)
    : manager(serviceManager)
    , name(usableName(requestedName))
    , arguments(argv, argv + argc)
    , argumentCount(argc)
{
    arguments.push_back(nullptr);
}

int QtServiceBase::exec()
{
    const Option *option = chosenOption(argumentCount, arguments.data());
    return option ? (this->*option->action)() : runUnderManager();
}

int QtServiceBase::installService()
{
    if (manager.isInstalled(name)) {
        std::fprintf(stderr, "The service %s is already installed\n", latinName().constData());
        return 0;
    }
    const tarnPlatform::ServiceRegistration registration {
        name, description, argument(2), argument(3), startup == AutoStartup};
    if (!manager.install(registration)) {
        std::fprintf(stderr, "The service %s could not be installed\n", latinName().constData());
        return exitFailed;
    }
    std::printf("The service %s has been installed under: %s\n", latinName().constData(),
        manager.programPath().toLatin1().constData());
    return 0;
}

int QtServiceBase::uninstallService()
{
    if (!manager.isInstalled(name)) {
        std::fprintf(stderr, "The service %s is not installed\n", latinName().constData());
        return 0;
    }
    if (!manager.uninstall(name)) {
        std::fprintf(stderr, "The service %s could not be uninstalled\n", latinName().constData());
        return exitFailed;
    }
    std::printf("The service %s has been uninstalled.\n", latinName().constData());
    return 0;
}

int QtServiceBase::printVersion()
{
    std::printf(
        "The service\n\t%s\n\t%s\n\n", latinName().constData(), manager.programPath().toLatin1().constData());
    std::printf("is %s", manager.isInstalled(name) ? "installed" : "not installed");
    std::printf(" and %s\n\n", manager.isRunning(name) ? "running" : "not running");
    return 0;
}

int QtServiceBase::executeAsApplication()
{
    arguments.erase(arguments.begin() + 1);
    --argumentCount;
    createApplication(argumentCount, arguments.data());

    const auto &stopRequests = tarnPlatform::StopRequests::ofProcess();
    QObject::connect(
        &stopRequests, &tarnPlatform::StopRequests::stopRequested, qApp, [this] { stopService(); });
    start();
    if (stopRequests.isRequested()) // before the connection above
        QMetaObject::invokeMethod(
            qApp, [this] { stopService(); }, Qt::QueuedConnection);
    const int result = executeApplication();
    if (result == -1)
        qErrnoWarning("The service could not be executed.");
    return result;
}

int QtServiceBase::terminateService()
{
    if (!manager.terminate(name))
        qErrnoWarning("The service could not be stopped.");
    return 0;
}

int QtServiceBase::sendPause()
{
    manager.pause(name);
    return 0;
}

int QtServiceBase::sendResume()
{
    manager.resume(name);
    return 0;
}

int QtServiceBase::sendUserCommand()
{
    bool isNumber = true;
    const int code = argumentCount > 2 ? argument(2).toInt(&isNumber) : 0;
    if (isNumber && tarnPlatform::isUserCommand(code))
        manager.sendCommand(name, code);
    return 0;
}

int QtServiceBase::printHelp()
{
    std::printf(usageText, arguments[0]);
    return 0;
}

int QtServiceBase::runUnderManager()
{
    createApplication(argumentCount, arguments.data());
    int exitCode = 0;
    if (manager.runService(name, acceptedControls(flags), *this, &exitCode))
        return exitCode;
    std::fprintf(stderr, "The service %s could not start\n", latinName().constData());
    return exitNotStarted;
}

// From the application object, because argv lacks the characters that are not in the system's code page; a
// name or a password may contain some.
QString QtServiceBase::argument(int index)
{
    createApplication(argumentCount, arguments.data());
    return applicationArguments().value(index);
}

// A service is stopped once, however often it is asked to.
void QtServiceBase::stopService()
{
    if (stopped)
        return;
    stopped = true;
    stop();
    QCoreApplication::quit();
}
