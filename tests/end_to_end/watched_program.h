#pragma once

#include "end_to_end/service_process.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <optional>

namespace tarnTest {

// A client program of its own, and what it has shown since the last look. It ends with this object.
class WatchedProgram
{
public:
    // Its output is kept in the service's folder.
    WatchedProgram(const ServiceProcess &service, const QString &program, const QStringList &arguments);
    ~WatchedProgram();

    WatchedProgram(const WatchedProgram &) = delete;
    WatchedProgram &operator=(const WatchedProgram &) = delete;

    [[nodiscard]] bool runs() { return process.waitForStarted(); }
    void type(const QByteArray &keys);
    // The line comes after those that were waited for before.
    [[nodiscard]] bool shows(const QString &line) { return showsAll({line}); }
    // The same for several lines, in any order.
    [[nodiscard]] bool showsAll(const QStringList &expected);
    // The exit code; nothing if it does not end or crashes.
    [[nodiscard]] std::optional<int> end();

private:
    [[nodiscard]] QStringList lines() const;

    QString output;
    QProcess process;
    qsizetype seen = 0;
};

} // namespace tarnTest
