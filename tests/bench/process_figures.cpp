#include "process_figures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <unistd.h>

namespace tarnBench {
namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The number behind a key at the start of a line, 0 when it is not there.
qint64 numberAfter(const QByteArray &text, const char *key)
{
    for (const QByteArray &line : text.split('\n')) {
        if (line.startsWith(key))
            return line.mid(qstrlen(key)).simplified().split(' ').first().toLongLong();
    }
    return 0;
}

double cpuSecondsOf(const QString &process)
{
    // The name, in brackets, may hold blanks; user and system time are the 12th and 13th field after it.
    const QByteArray stat = contentOf(process + QStringLiteral("/stat"));
    const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    const qint64 ticks = fields.value(11).toLongLong() + fields.value(12).toLongLong();
    return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace

Activity activityOf(qint64 pid)
{
    const QString process = QStringLiteral("/proc/%1").arg(pid);
    Activity activity;
    double threadSeconds = 0;
    const QDir tasks(process + QStringLiteral("/task"));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray status = contentOf(tasks.filePath(task + QStringLiteral("/status")));
        activity.wakeUps += numberAfter(status, "voluntary_ctxt_switches:");
        activity.preemptions += numberAfter(status, "nonvoluntary_ctxt_switches:");
        // In nanoseconds; not every kernel keeps it.
        const QByteArray schedule = contentOf(tasks.filePath(task + QStringLiteral("/schedstat")));
        threadSeconds += static_cast<double>(schedule.split(' ').first().toLongLong()) / 1e9;
        ++activity.threads;
    }
    activity.cpuSeconds = threadSeconds > 0 ? threadSeconds : cpuSecondsOf(process);
    return activity;
}

IdleFigures watchProcess(qint64 pid, std::chrono::milliseconds duration)
{
    const Activity before = activityOf(pid);
    QElapsedTimer elapsed;
    elapsed.start();
    QEventLoop loop;
    QTimer::singleShot(duration, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    const double seconds = static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
    const Activity after = activityOf(pid);
    return {static_cast<double>(after.wakeUps - before.wakeUps) / seconds,
        100 * (after.cpuSeconds - before.cpuSeconds) / seconds, after.threads};
}

std::optional<Memory> memoryOf(qint64 pid)
{
    const QByteArray text = contentOf(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (text.isEmpty())
        return std::nullopt;
    const auto kib = [&text](const char *key) {
        return static_cast<int>(numberAfter(text, key));
    };
    return Memory {
        kib("Rss:"), kib("Pss:"), kib("Private_Clean:") + kib("Private_Dirty:"), kib("Anonymous:")};
}

} // namespace tarnBench
