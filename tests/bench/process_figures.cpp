#include "process_figures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHash>
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

// What the kernel has counted since the start of a thread.
struct Activity
{
    qint64 wakeUps = 0;
    double cpuSeconds = 0;
};

double cpuSecondsOf(const QDir &thread)
{
    // In nanoseconds; not every kernel keeps it.
    const qint64 ns = contentOf(thread.filePath(QStringLiteral("schedstat"))).split(' ').first().toLongLong();
    if (ns > 0)
        return static_cast<double>(ns) / 1e9;
    // The name, in brackets, may hold blanks; user and system time are the 12th and 13th field after it.
    const QByteArray stat = contentOf(thread.filePath(QStringLiteral("stat")));
    const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    const qint64 ticks = fields.value(11).toLongLong() + fields.value(12).toLongLong();
    return static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

// By the number of the thread.
QHash<QString, Activity> activityOf(qint64 pid)
{
    QHash<QString, Activity> threads;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(pid));
    for (const QString &number : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QDir thread(tasks.filePath(number));
        const QByteArray status = contentOf(thread.filePath(QStringLiteral("status")));
        threads.insert(number, {numberAfter(status, "voluntary_ctxt_switches:"), cpuSecondsOf(thread)});
    }
    return threads;
}

} // namespace

IdleFigures watchProcess(qint64 pid, std::chrono::milliseconds duration)
{
    const auto before = activityOf(pid);
    QElapsedTimer elapsed;
    elapsed.start();
    QEventLoop loop;
    QTimer::singleShot(duration, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    const double seconds = static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
    const auto after = activityOf(pid);
    IdleFigures idle;
    idle.threads = static_cast<int>(after.size());
    for (auto thread = after.begin(); thread != after.end(); ++thread) {
        const Activity earlier = before.value(thread.key());
        idle.wakeUpsPerSecond += static_cast<double>(thread->wakeUps - earlier.wakeUps) / seconds;
        idle.cpuPercent += 100 * (thread->cpuSeconds - earlier.cpuSeconds) / seconds;
    }
    return idle;
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
