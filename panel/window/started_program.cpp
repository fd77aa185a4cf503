#include "panel/window/started_program.h"

#include "platform/processes.h"
#include "simulator/state_location.h"

#include <QFileInfo>
#include <QProcessEnvironment>

#include <algorithm>
#include <chrono>

namespace tarnPanel {

namespace {

using namespace std::chrono_literals;

// Both end within a few seconds, whatever they are at.
constexpr auto endTimeout = 15s;
constexpr auto lookPeriod = 2s;

QString canonical(const QString &path)
{
    return QFileInfo(path).canonicalFilePath();
}

} // namespace

ProgramKind serviceProgram()
{
    return {QStringLiteral("TarnService"), {QStringLiteral("-exec")}, QStringLiteral("The service")};
}

ProgramKind serialPortProgram()
{
    return {QStringLiteral("tarnserial"), {}, QStringLiteral("The serial port of the KVane")};
}

StartedProgram::StartedProgram(
    const ProgramKind &programKind, const QString &folder, const QString &stateFile, QObject *parent)
    : QObject(parent)
    , kind(programKind)
    , program(startableProgram(folder, kind.file))
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // To the terminal, also where the system has a journal.
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    if (!stateFile.isEmpty())
        environment.insert(QString::fromLatin1(tarnSimulator::stateFileVariable), stateFile);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setWorkingDirectory(folder);
    looking.setInterval(lookPeriod);
    connect(&looking, &QTimer::timeout, this, &StartedProgram::lookForForeign);
    connect(&process, &QProcess::finished, this, &StartedProgram::noteEnd);
    connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            enter(State::Ended,
                QStringLiteral("%1 cannot be started: %2.").arg(kind.noun, process.errorString()));
    });
}

StartedProgram::~StartedProgram()
{
    process.disconnect(this);
    if (!isAlive())
        return;
    process.kill();
    process.waitForFinished();
}

void StartedProgram::start()
{
    if (!mayBeStarted())
        return;
    if (runsAlready()) {
        enter(State::Foreign,
            QStringLiteral("%1 was running already and stays when this window closes.").arg(kind.noun));
        looking.start();
        return;
    }
    looking.stop();
    process.start(program, kind.arguments);
    if (isAlive())
        enter(State::Running,
            QStringLiteral("%1 was started for this window and ends with it.").arg(kind.noun));
}

void StartedProgram::end()
{
    if (!isAlive() || now == State::Ending)
        return;
    enter(State::Ending, QStringLiteral("%1 is ending.").arg(kind.noun));
    process.terminate();
    QTimer::singleShot(endTimeout, &process, &QProcess::kill);
}

void StartedProgram::noteEnd(int exitCode, QProcess::ExitStatus status)
{
    const QString why = status == QProcess::NormalExit
        ? QStringLiteral("%1 has ended with exit code %2.").arg(kind.noun).arg(exitCode)
        : QStringLiteral("%1 was killed or has crashed.").arg(kind.noun);
    enter(State::Ended, why);
}

void StartedProgram::lookForForeign()
{
    if (runsAlready())
        return;
    looking.stop();
    enter(State::Ended, QStringLiteral("%1 that was running has ended.").arg(kind.noun));
}

void StartedProgram::enter(State next, const QString &why)
{
    now = next;
    reason = why;
    Q_EMIT changed();
}

bool StartedProgram::runsAlready() const
{
    const QStringList running = tarnPlatform::ProcessList::system().pathsOf(QFileInfo(program).fileName());
    return std::ranges::any_of(
        running, [this](const QString &path) { return canonical(path) == canonical(program); });
}

} // namespace tarnPanel
