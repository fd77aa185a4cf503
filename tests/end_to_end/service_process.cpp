#include "end_to_end/service_process.h"

#include "end_to_end/test_system.h"
#include "simulator/accessory_catalog.h"
#include "simulator/fault_table.h"
#include "support/child_process.h"
#include "support/pipe_peer.h"
#include "support/seen_texts.h"
#include "support/whole_exchanges.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

#include <iostream>

namespace tarnTest {
namespace {

const QString programName = QStringLiteral("TarnService" TARN_PROGRAM_SUFFIX);
const QString logName = QStringLiteral("service.log");
constexpr int endTimeoutMs = 5000;

void copyFiles(const QDir &from, const QString &to, const QStringList &names = {})
{
    QDir().mkpath(to);
    for (const QString &name : from.entryList(names, QDir::Files))
        QFile::copy(from.filePath(name), QDir(to).filePath(name));
}

QString standInsFolder()
{
    const QString given = qEnvironmentVariable("TARN_STAND_INS_FOLDER");
    return given.isEmpty() ? QStringLiteral(TARN_STAND_INS_FOLDER) : given;
}

// A machine that a test does not make itself: the serial port of its MCU is served from outside.
QString givenStateFile()
{
    return qEnvironmentVariable("TARN_SIMULATOR_STATE");
}

// What is shipped beside the program: on Windows its libraries as well.
void copyProgram(const QDir &from, const QDir &to)
{
    QFile::copy(from.filePath(programName), to.filePath(programName));
    for (const QString &library : from.entryList({QStringLiteral("*.dll")}, QDir::Files))
        QFile::copy(from.filePath(library), to.filePath(library));
    to.mkpath(QStringLiteral("function"));
    const QString ports = QStringLiteral("function/inpoutx64.dll");
    QFile::copy(from.filePath(ports), to.filePath(ports));
    copyFiles(from.filePath(QStringLiteral("function/MCU")), to.filePath(QStringLiteral("function/MCU")));
}

// Programs of other makers, and those that would open windows. On Windows the simulated ones lie apart from
// what is shipped.
void copyStandIns(const QDir &from, const QDir &to)
{
    const QDir apart(standInsFolder());
    if (!apart.exists(QStringLiteral("IFU_XE.exe"))) {
        for (const QString &folder : {QStringLiteral("TarnServiceGui"), QStringLiteral("function/EC")})
            copyFiles(from.filePath(folder), to.filePath(folder));
        return;
    }
    copyFiles(apart, to.path(), {QStringLiteral("*.dll")});
    copyFiles(apart, to.filePath(QStringLiteral("TarnServiceGui")), {QStringLiteral("TarnServiceGui.exe")});
    copyFiles(apart, to.filePath(QStringLiteral("function/EC")),
        {QStringLiteral("IFU_XE.exe"), QStringLiteral("uiset.ini")});
}

QString runFolder()
{
    const QString given = qEnvironmentVariable("TARN_RUN_FOLDER");
    return given.isEmpty() ? QStringLiteral(TARN_RUN_FOLDER) : given;
}

} // namespace

QString builtProgram(const QString &name)
{
    return QDir(runFolder()).filePath(name + QStringLiteral(TARN_PROGRAM_SUFFIX));
}

QString standIn(const QString &name)
{
    return QDir(standInsFolder()).filePath(name);
}

ServiceProcess::ServiceProcess()
{
    copyProgram(QDir(runFolder()), QDir(folder.path()));
    copyStandIns(QDir(runFolder()), QDir(folder.path()));
    qputenv("TMPDIR", folder.path().toLocal8Bit()); // the socket lies there; each test has its own

    std::string error;
    const QString given = givenStateFile();
    const auto stateFile =
        (given.isEmpty() ? path(QStringLiteral("function/simulated_computer.state")) : given).toStdString();
    machine = tarnSimulator::MachineStateFile::open(
        stateFile, tarnSimulator::MachineStateFile::Missing::IsCreated, error);
    if (!machine)
        qFatal("%s", error.c_str());
    control = std::make_unique<tarnSimulator::ComputerControl>(machine->state());
    if (!given.isEmpty())
        control->reset();
    if (const int polls = qEnvironmentVariableIntValue("TARN_ACCEPTANCE_POLLS"); polls > 0)
        control->timing().acceptancePolls.store(static_cast<std::uint32_t>(polls));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    // Downloads of its own, where the system lets a variable decide.
    environment.insert(QStringLiteral("HOME"), folder.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
    process.setProcessEnvironment(environment);
    // Into a file: a pipe that the test does not empty in time would hold the service up in its logging.
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(path(logName));
    prepareForStop(process);
}

ServiceProcess::~ServiceProcess()
{
    const bool stillRan = process.state() != QProcess::NotRunning;
    kill();
    noteSeenLines("said", log());
    EXPECT_EQ(brokenExchanges(state(), kills), QString());
    if (testing::Test::HasFailure()) {
        std::cerr << "the service " << (stillRan ? "still ran" : "had ended") << "; it said last:\n"
                  << log().right(6000).toStdString() << '\n';
    }
}

bool ServiceProcess::start(const QStringList &arguments)
{
    return launch(arguments) && waitForLog(QStringLiteral("getAccessoryTypeForFirst finish normal."));
}

bool ServiceProcess::launch(const QStringList &arguments, const QString &workingFolder)
{
    noteSeenLines("said", log()); // a new process begins a new log
    if (process.exitStatus() == QProcess::CrashExit)
        noteKill();
    process.setWorkingDirectory(workingFolder.isEmpty() ? folder.path() : workingFolder);
    process.start(path(programName), arguments);
    return process.waitForStarted();
}

std::optional<int> ServiceProcess::stop(int boundMs)
{
    requestStop(process);
    if (!waitForEnd(boundMs) || process.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return process.exitCode();
}

void ServiceProcess::kill()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.kill();
    tarnTest::waitForEnd(process, endTimeoutMs);
}

bool ServiceProcess::waitForLog(const QString &text, int times, int boundMs)
{
    return waitUntil([&] { return logCount(text) >= times; }, boundMs);
}

bool ServiceProcess::waitForEnd(int boundMs)
{
    return tarnTest::waitForEnd(process, boundMs);
}

QString ServiceProcess::log()
{
    QFile file(path(logName));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLocal8Bit(file.readAll()).remove(QLatin1Char('\r'));
}

QByteArray ServiceProcess::read(const QString &name) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    noteSeenFile(name, content);
    return content;
}

void ServiceProcess::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
    noteSeenFile(name, {});
}

QString ServiceProcess::downloads() const
{
    const QString downloads = downloadFolder(folder.path());
    QDir().mkpath(downloads);
    return downloads;
}

void ServiceProcess::attach(std::uint8_t accessoryCode)
{
    control->attach(*tarnSimulator::findAccessory(accessoryCode));
}

void ServiceProcess::breakDown(const char *fault, std::optional<int> value, unsigned skip)
{
    const auto *description = tarnSimulator::findFault(fault);
    if (!description)
        qFatal("no fault named %s", fault);
    control->faults().switchOn(description->fault, value.value_or(description->onValue), skip);
}

} // namespace tarnTest
