#include "system_computer.h"

#include "client/pipe_address.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace tarnctl {

namespace {

constexpr int startTime = 19; // the field of "stat", counted from the state, which follows the name

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray(); // /proc tells no sizes
}

// Seconds since 1970.
std::optional<qint64> timeOfBoot()
{
    for (const QByteArray &line : content(QStringLiteral("/proc/stat")).split('\n')) {
        if (line.startsWith("btime "))
            return line.mid(6).toLongLong();
    }
    return std::nullopt;
}

// A system without service manager, where the service runs with the simulated computer.
class UnixComputer final : public SystemComputer
{
public:
    ServiceEntry service() override { return {}; }

    PipeState pipe(const QString &name) override
    {
        const QString path = tarn::pipeAddress(name).text;
        if (!QFileInfo::exists(path))
            return {};
        return {true, ::access(QFile::encodeName(path).constData(), W_OK) == 0, {}};
    }

    QString installedFolder() override { return {}; }
    QString fileVersion(const QString &) override { return {}; }

protected:
    std::optional<QDateTime> startOf(qint64 processId) override
    {
        const QByteArray status = content(QStringLiteral("/proc/%1/stat").arg(processId));
        const QList<QByteArray> fields = status.sliced(status.lastIndexOf(')') + 1).simplified().split(' ');
        const auto boot = timeOfBoot();
        if (fields.size() <= startTime || !boot)
            return std::nullopt;
        const qint64 ticks = fields.at(startTime).toLongLong();
        return QDateTime::fromSecsSinceEpoch(*boot + ticks / ::sysconf(_SC_CLK_TCK));
    }
};

} // namespace

Computer &Computer::ofSystem()
{
    static UnixComputer computer;
    return computer;
}

} // namespace tarnctl
