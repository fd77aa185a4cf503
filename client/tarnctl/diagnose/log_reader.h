#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace tarnctl {

// Reads the service's log files. They are opened for a moment each and shared, so the service can go on
// writing and put its file aside meanwhile.
class LogReader
{
public:
    explicit LogReader(const QString &logFolder);

    // All that are there, the oldest first. Bytes that are no UTF-8 are shown as such.
    [[nodiscard]] const QStringList &lines() const { return allLines; }
    [[nodiscard]] QStringList lastLines(qsizetype most) const;
    [[nodiscard]] bool hasFiles() const { return anyFile; }
    // What kept a file from being read; empty when nothing did.
    [[nodiscard]] QStringList problems() const { return failures; }

private:
    QStringList allLines;
    QStringList failures;
    bool anyFile = false;
};

// A line of the log, taken apart.
struct LogEntry
{
    QDateTime time;
    QString level;
    QString text;
};

// Nothing for a line of another form.
[[nodiscard]] std::optional<LogEntry> logEntry(const QString &line);

// The version that the newest run in these lines says it has, and when; nothing when no run begins in them.
struct LoggedStart
{
    QString version;
    QDateTime time;
    qsizetype linesSince = 0;
};
[[nodiscard]] std::optional<LoggedStart> lastStart(const QStringList &lines);

} // namespace tarnctl
