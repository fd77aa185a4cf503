#include "platform/process_list.h"

#include <QDir>
#include <QFile>

namespace tarnPlatform {
namespace {

// The kernel's own name of a process has at most 15 characters, so the program's file name is better, where
// it may be read.
QString programName(const QString &processFolder)
{
    const QString program = QFile::symLinkTarget(processFolder + QStringLiteral("/exe"));
    if (!program.isEmpty())
        return program.section(QLatin1Char('/'), -1);
    QFile name(processFolder + QStringLiteral("/comm"));
    return name.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(name.readAll()).trimmed() : QString();
}

class ProcFileSystem final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        const QDir processes(QStringLiteral("/proc"));
        for (const QString &entry : processes.entryList({QStringLiteral("[0-9]*")}, QDir::Dirs)) {
            if (matches(programName(processes.filePath(entry))))
                return true;
        }
        return false;
    }
};

} // namespace

ProcessList &ProcessList::ofSystem()
{
    static ProcFileSystem list;
    return list;
}

} // namespace tarnPlatform
