#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace tarnctl {

// The parsed command line.
struct ToolOptions
{
    QString pipeName;
    std::optional<std::chrono::milliseconds> timeout {};
    std::optional<std::chrono::milliseconds> duration {};
    std::optional<int> count {};
    // Version of the MCU's firmware, in the form of the service's answer, such as 1.23.
    std::optional<QString> expectedVersion {};
    // diagnose: where a report is to be written, whether it may connect, and whether the report may hold
    // serial numbers.
    std::optional<QString> reportFile {};
    bool connects = false;
    bool withSerialNumbers = false;
    // check-computer: also while the service records nothing.
    bool withoutRecording = false;
    bool json = false;
    bool verbose = false;
    bool force = false;
    bool reconnect = false;
    bool help = false;
    bool version = false;
    // The command and what follows it.
    QStringList words {};
};

struct ParsedOptions
{
    ToolOptions options {};
    // What is wrong with the command line; empty when nothing is.
    QString error {};
};

// The first argument is the program's own name.
[[nodiscard]] ParsedOptions parseOptions(const QStringList &arguments);

} // namespace tarnctl
