#include "log_reader.h"

#include "shared_file.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace tarnctl {

namespace {

constexpr int earlierFiles = 4;
constexpr qint64 mostBytes = qint64(4) * 1024 * 1024; // of a file; the service writes half as much

// In the order in which they were written. A file that somebody held open while it was to be renamed kept its
// number, so among the earlier ones their times count; the current one is the last even when the clock was
// set back.
QFileInfoList logFiles(const QString &folder)
{
    QFileInfoList files;
    for (int number = earlierFiles; number > 0; --number)
        files << QFileInfo(QDir(folder), QStringLiteral("TarnService.%1.log").arg(number));
    std::stable_sort(files.begin(), files.end(), [](const QFileInfo &left, const QFileInfo &right) {
        return left.lastModified() < right.lastModified();
    });
    files << QFileInfo(QDir(folder), QStringLiteral("TarnService.log"));
    files.removeIf([](const QFileInfo &file) { return !file.exists(); });
    return files;
}

} // namespace

LogReader::LogReader(const QString &logFolder)
{
    for (const QFileInfo &file : logFiles(logFolder)) {
        anyFile = true;
        QString problem;
        const auto content = readEnd(file.filePath(), problem, mostBytes);
        if (!content) {
            failures << file.fileName() + QStringLiteral(": ") + problem;
            continue;
        }
        allLines += QString::fromUtf8(*content).split(u'\n', Qt::SkipEmptyParts);
    }
}

QStringList LogReader::lastLines(qsizetype most) const
{
    return allLines.mid(std::max<qsizetype>(0, allLines.size() - most));
}

std::optional<LogEntry> logEntry(const QString &line)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}) (\\w+) 0x[0-9a-f]+ (.*)$"));
    const auto match = form.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    return LogEntry {
        QDateTime::fromString(match.captured(1), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")),
        match.captured(2),
        match.captured(3),
    };
}

std::optional<LoggedStart> lastStart(const QStringList &lines)
{
    static const QString said = QStringLiteral("Tarn Service is running as  \"");
    static const QRegularExpression banner(QStringLiteral("^Tarn Service is running as  \"(.*)\" !$"));
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        if (!line->contains(said)) // much faster than to take the line apart
            continue;
        const auto entry = logEntry(*line);
        const auto match = entry ? banner.match(entry->text) : QRegularExpressionMatch();
        if (match.hasMatch())
            return LoggedStart {match.captured(1), entry->time, std::distance(lines.rbegin(), line)};
    }
    return std::nullopt;
}

} // namespace tarnctl
