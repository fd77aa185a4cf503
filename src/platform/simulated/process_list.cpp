#include "platform/process_list.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <algorithm>

namespace tarnPlatform {
namespace {

// The file name of the program, and the name that the process goes by, which a script has too. The latter has
// at most 15 characters.
QStringList programNames(const QString &processFolder)
{
    QString program = QFile::symLinkTarget(processFolder + QStringLiteral("/exe"));
    const QString replacedMark = QStringLiteral(" (deleted)");
    if (program.endsWith(replacedMark))
        program.chop(replacedMark.size());
    QStringList names {program.section(QLatin1Char('/'), -1)};
    if (names.first().startsWith(QStringLiteral("wine")))
        return names; // goes by the name of a Windows program, which is on another computer as it were
    QFile name(processFolder + QStringLiteral("/comm"));
    if (name.open(QIODevice::ReadOnly))
        names << QString::fromLocal8Bit(name.readAll()).trimmed();
    return names;
}

class ProcFileSystem final : public ProcessList
{
public:
    bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        const QDir processes(QStringLiteral("/proc"));
        for (const QString &entry : processes.entryList({QStringLiteral("[0-9]*")}, QDir::Dirs)) {
            const QStringList names = programNames(processes.filePath(entry));
            if (std::any_of(names.begin(), names.end(), matches))
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
