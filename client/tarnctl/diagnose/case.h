#pragma once

#include "computer.h"
#include "installation.h"
#include "log_reader.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace tarnctl {

// The process of the service, if it is known which one it is.
struct ServiceProcess
{
    enum class Known { No, Yes, Unreadable };
    Known known = Known::No;
    TimedProgram program {};
};

// What is diagnosed, and what all looks need of it. It is read once, so the lines agree with each other.
struct Case
{
    Computer &computer;
    QString pipeName;
    QDateTime now;
    ServiceEntry service;
    Installation installation;
    LogReader log;
    std::optional<LoggedStart> start; // of the newest run in the log
    std::optional<QList<TimedProgram>>
        programs; // all that have the service's file name; nothing when unknown
    ServiceProcess process;

    [[nodiscard]] bool isRunning() const { return process.known == ServiceProcess::Known::Yes; }
    // Of the process; nothing when it is not known.
    [[nodiscard]] std::optional<qint64> secondsSinceStart() const;
    // Whether the newest run in the log is that of the process.
    [[nodiscard]] bool isStartOfProcess() const;
};

[[nodiscard]] Case examine(Computer &computer, const QString &pipeName, const QDateTime &now);

} // namespace tarnctl
