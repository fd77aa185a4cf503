#include "platform/processes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <csignal>
#include <optional>
#include <sys/prctl.h>
#include <unistd.h>

namespace tarnPlatform {
namespace {

constexpr int longestOwnName = 15; // of the name that the kernel keeps for a process ("comm")
constexpr int kernelFlags = 6; // the field of "stat", counted from the state, which follows the name
constexpr uint exiting = 0x4; // PF_EXITING in include/linux/sched.h

// A process as /proc shows it.
class ListedProcess
{
public:
    explicit ListedProcess(const QString &processFolder)
        : folder(processFolder)
        , program(QFile::symLinkTarget(folder + QStringLiteral("/exe")))
        , ownName(QString::fromLocal8Bit(content("comm")).trimmed())
    {
        const QString deletedMark = QStringLiteral(" (deleted)");
        if (program.endsWith(deletedMark))
            program.chop(deletedMark.size());
    }

    // The file name of the program, and the process's own name, which for a script is that of the script.
    [[nodiscard]] QStringList names() const
    {
        const QString name = program.section(QLatin1Char('/'), -1);
        return isUnderWine() ? QStringList(name) : QStringList({name, ownName});
    }

    // The program's path if it has that name; empty when it cannot be read.
    [[nodiscard]] std::optional<QString> pathAs(const QString &name) const
    {
        if (isCalled(program, name))
            return program;
        if (isUnderWine() || ownName.compare(name.left(longestOwnName), Qt::CaseInsensitive) != 0)
            return std::nullopt;
        std::optional<QString> script = scriptCalled(name);
        if (script || !program.isEmpty())
            return script;
        return hasEnded() ? std::nullopt : std::optional(QString());
    }

private:
    [[nodiscard]] static bool isCalled(const QString &path, const QString &name)
    {
        return path.section(QLatin1Char('/'), -1).compare(name, Qt::CaseInsensitive) == 0;
    }

    // Its own name is then that of a Windows program, which does not count as a program of this system.
    [[nodiscard]] bool isUnderWine() const
    {
        return program.section(QLatin1Char('/'), -1).startsWith(QStringLiteral("wine"));
    }

    // The program of a script is its interpreter; the script's path is among the first words of the command.
    [[nodiscard]] std::optional<QString> scriptCalled(const QString &name) const
    {
        for (const QByteArray &word : content("cmdline").split('\0')) {
            const QString path = QFile::decodeName(word);
            if (!isCalled(path, name))
                continue;
            const QString current = QFile::symLinkTarget(folder + QStringLiteral("/cwd"));
            if (current.isEmpty()) // a relative path must not be taken as relative to this process's folder
                return std::nullopt;
            return QDir(current).absoluteFilePath(path);
        }
        return std::nullopt;
    }

    // Gone meanwhile, a zombie whose exit code has not been fetched, or about to become one: a process loses
    // its program before it gets the state of a zombie.
    [[nodiscard]] bool hasEnded() const
    {
        const QByteArray status = content("stat");
        const QList<QByteArray> fields = status.sliced(status.lastIndexOf(')') + 1).simplified().split(' ');
        return fields.size() <= kernelFlags || (fields.at(kernelFlags).toUInt() & exiting) != 0;
    }

    [[nodiscard]] QByteArray content(const char *name) const
    {
        QFile file(folder + QLatin1Char('/') + QLatin1String(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QString folder;
    QString program;
    const QString ownName;
};

QStringList processFolders()
{
    const QDir processes(QStringLiteral("/proc"));
    QStringList folders;
    for (const QString &entry : processes.entryList({QStringLiteral("[0-9]*")}, QDir::Dirs))
        folders << processes.filePath(entry);
    return folders;
}

class ProcFileSystem final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        for (const QString &folder : processFolders()) {
            const QStringList names = ListedProcess(folder).names();
            if (std::any_of(names.begin(), names.end(), matches))
                return true;
        }
        return false;
    }

    QList<RunningProgram> programsCalled(const QString &fileName) override
    {
        const QStringList folders = processFolders();
        if (folders.isEmpty())
            return {RunningProgram()}; // there is at least this process, so nothing could be read
        QList<RunningProgram> programs;
        for (const QString &folder : folders) {
            if (const auto path = ListedProcess(folder).pathAs(fileName))
                programs << RunningProgram {*path, folder.section(QLatin1Char('/'), -1).toLongLong()};
        }
        return programs;
    }
};

} // namespace

ProcessList &ProcessList::ofSystem()
{
    static ProcFileSystem list;
    return list;
}

void separateFromThisProcess(QProcess &process)
{
    process.setChildProcessModifier([] { ::setsid(); });
}

// Empty, because the kernel ends the program (PR_SET_PDEATHSIG).
class ProcessTie
{ };

TiedProcess::TiedProcess()
{
    // In the child, before it becomes the program.
    setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) // the parent has ended before the kernel was told to watch it
            ::_exit(EXIT_FAILURE);
    });
}

TiedProcess::~TiedProcess() = default;

bool TiedProcess::startTied(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    return waitForStarted(-1);
}

bool waitForEnd(QProcess &process, int milliseconds)
{
    process.waitForFinished(milliseconds);
    return process.state() == QProcess::NotRunning;
}

} // namespace tarnPlatform
