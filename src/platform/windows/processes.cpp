#include "platform/processes.h"

#include "platform/windows/launch_job.h"
#include "platform/windows/unique_handle.h"

#include <QDir>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <optional>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

namespace tarnPlatform {
namespace {

constexpr DWORD longestPath = 0x8000; // characters, the end included

// The path of a process's program; empty when it cannot be read, nothing when the process has ended.
std::optional<QString> pathOf(DWORD processId)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process) // the id of a process that has ended is invalid
        return GetLastError() == ERROR_INVALID_PARAMETER ? std::nullopt : std::optional(QString());
    std::vector<wchar_t> path(longestPath);
    DWORD length = longestPath;
    const bool isRead = QueryFullProcessImageNameW(process.get(), 0, path.data(), &length);
    DWORD exitCode = STILL_ACTIVE; // asked last: a process that ends meanwhile must not count as unreadable
    if (GetExitCodeProcess(process.get(), &exitCode) && exitCode != STILL_ACTIVE)
        return std::nullopt; // it has ended, but a handle of it is still open
    if (!isRead)
        return QString();
    return QDir::fromNativeSeparators(QString::fromWCharArray(path.data(), static_cast<int>(length)));
}

class ToolHelpSnapshot final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        const auto seenEnough = visit([&matches](const PROCESSENTRY32W &entry) {
            return matches(QString::fromWCharArray(entry.szExeFile));
        });
        return seenEnough.value_or(false);
    }

    QList<RunningProgram> programsCalled(const QString &fileName) override
    {
        QList<RunningProgram> programs;
        const auto seenEnough = visit([&](const PROCESSENTRY32W &entry) {
            if (QString::fromWCharArray(entry.szExeFile).compare(fileName, Qt::CaseInsensitive) == 0) {
                if (const auto path = pathOf(entry.th32ProcessID))
                    programs << RunningProgram {*path, static_cast<qint64>(entry.th32ProcessID)};
            }
            return false;
        });
        return seenEnough ? programs : QList<RunningProgram> {RunningProgram()};
    }

private:
    // Empty when there is no snapshot.
    [[nodiscard]] static std::optional<bool> visit(
        const std::function<bool(const PROCESSENTRY32W &)> &hasSeenEnough)
    {
        const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
        if (!snapshot)
            return std::nullopt;
        PROCESSENTRY32W entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL found = Process32FirstW(snapshot.get(), &entry); found;
             found = Process32NextW(snapshot.get(), &entry)) {
            if (hasSeenEnough(entry))
                return true;
        }
        return false;
    }
};

} // namespace

ProcessList &ProcessList::ofSystem()
{
    static ToolHelpSnapshot list;
    return list;
}

void separateFromThisProcess(QProcess &process)
{
    // Without a window a console program still gets a console, but one that no user can close or type into.
    process.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments *arguments) {
        arguments->flags |= CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP;
    });
}

class ProcessTie
{
public:
    LaunchJob job;
};

TiedProcess::TiedProcess()
    : tie(std::make_unique<ProcessTie>())
{ }

TiedProcess::~TiedProcess() = default;

bool TiedProcess::startTied(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    if (!waitForStarted(-1))
        return false;
    const UniqueHandle started(
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(processId())));
    tie->job.take(started.get());
    return true;
}

LaunchJob::LaunchJob()
    : job(CreateJobObjectW(nullptr, nullptr))
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

void LaunchJob::take(HANDLE process)
{
    AssignProcessToJobObject(job.get(), process);
}

// QProcess watches its process from a thread of the system's pool. Its own wait sees the end as well, and
// stops that watch at the same moment. Wine (8.0) may call the watch back after that, on memory that has been
// freed, and the service crashes. In an event loop the end is only seen through the watch.
bool waitForEnd(QProcess &process, int milliseconds)
{
    QEventLoop loop;
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&loop](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            loop.quit();
    });
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (milliseconds >= 0)
        timer.start(milliseconds);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    return process.state() == QProcess::NotRunning;
}

} // namespace tarnPlatform
