#include "end_to_end/watched_program.h"

#include "support/child_process.h"
#include "support/pipe_peer.h"

#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnTest {
namespace {

constexpr int lineTimeoutMs = 60000;
constexpr int killTimeoutMs = 5000;

} // namespace

WatchedProgram::WatchedProgram(
    const ServiceProcess &service, const QString &program, const QStringList &arguments)
    : output(service.path(QStringLiteral("watched_program.out")))
{
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(output);
    process.start(program, arguments);
}

WatchedProgram::~WatchedProgram()
{
    process.kill();
    waitForEnd(process, killTimeoutMs);
}

void WatchedProgram::type(const QByteArray &keys)
{
    process.write(keys);
    EXPECT_TRUE(process.waitForBytesWritten());
}

bool WatchedProgram::showsAll(const QStringList &expected)
{
    const auto haveCome = [&] {
        const QStringList shown = lines();
        qsizetype last = seen;
        for (const QString &line : expected) {
            const qsizetype at = shown.indexOf(line, seen);
            if (at < 0)
                return false;
            last = std::max(last, at + 1);
        }
        seen = last;
        return true;
    };
    if (waitUntil(haveCome, lineTimeoutMs))
        return true;
    ADD_FAILURE() << expected.join(" | ").toStdString() << ": does not come after line " << seen << " of\n"
                  << lines().join('\n').toStdString();
    return false;
}

std::optional<int> WatchedProgram::end()
{
    if (!waitForEnd(process, lineTimeoutMs) || process.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return process.exitCode();
}

QStringList WatchedProgram::lines() const
{
    QFile file(output);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).remove(QLatin1Char('\r')).split(QLatin1Char('\n'));
}

} // namespace tarnTest
