#include "load/process_figures.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <unistd.h>

namespace tarnLoad {
namespace {

constexpr double kibInMib = 1024;

QString content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

// The number behind a name such as "VmRSS:".
double field(const QString &status, const QString &name)
{
    const qsizetype at = status.indexOf(QLatin1Char('\n') + name + QLatin1Char(':'));
    return at < 0
        ? 0
        : status.mid(at + name.size() + 2, 24).simplified().section(QLatin1Char(' '), 0, 0).toDouble();
}

// User and system time; the name of the program, before them, may hold blanks.
qint64 cpuMs(const QString &stat)
{
    const QStringList fields = stat.mid(stat.lastIndexOf(QLatin1Char(')')) + 2).split(QLatin1Char(' '));
    constexpr int userTime = 11;
    if (fields.size() <= userTime + 1)
        return 0;
    const qint64 ticks = fields.at(userTime).toLongLong() + fields.at(userTime + 1).toLongLong();
    return ticks * 1000 / ::sysconf(_SC_CLK_TCK);
}

} // namespace

ProcessFigures figuresOf(qint64 processId)
{
    const QString folder = QStringLiteral("/proc/%1/").arg(processId);
    const QString status = content(folder + QStringLiteral("status"));
    ProcessFigures figures;
    figures.memoryMib = field(status, QStringLiteral("VmRSS")) / kibInMib;
    figures.peakMib = field(status, QStringLiteral("VmHWM")) / kibInMib;
    figures.cpuMs = cpuMs(content(folder + QStringLiteral("stat")));
    figures.threads = static_cast<int>(field(status, QStringLiteral("Threads")));
    const QDir descriptors(folder + QStringLiteral("fd"));
    figures.handles = static_cast<int>(
        descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
    return figures;
}

} // namespace tarnLoad
