#include "recording_place.h"

#include "event_wait.h"

#include "device/recording/recording.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryFile>

#include <algorithm>

namespace tarnctl {

namespace {

using std::chrono::milliseconds;

// A recording of 64 MiB takes a second to read.
constexpr milliseconds readPause(500);

// Of the open file: the folder's own entry may show the size that it had when it was last closed.
qint64 sizeOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.size() : -1;
}

// A recording that the check belongs to.
struct CheckedRecording
{
    QString path;
    tarnRecording::Recording content;
};

// In the order of their clock: a new one begins when one is full, and when the service starts.
QList<CheckedRecording> checkedRecordings(
    const QString &grown, const QStringList &before, QStringList &problems)
{
    QList<CheckedRecording> found;
    for (const QString &path : recordingsIn(QFileInfo(grown).path())) {
        if (path != grown && before.contains(path))
            continue;
        std::string error;
        const auto content = tarnRecording::readRecording(path.toStdString(), error);
        if (content)
            found << CheckedRecording {path, *content};
        else
            problems << QString::fromStdString(error);
    }
    std::stable_sort(
        found.begin(), found.end(), [](const CheckedRecording &one, const CheckedRecording &other) {
            return one.content.header.clockUs < other.content.header.clockUs;
        });
    return found;
}

} // namespace

QStringList recordingsIn(const QString &folder)
{
    const QDir place(folder);
    QStringList paths;
    for (const QString &name : place.entryList({QStringLiteral("ec-*.recording")}, QDir::Files, QDir::Name))
        paths << place.filePath(name);
    return paths;
}

QString growingRecording(const QString &folder, milliseconds longest)
{
    QHash<QString, qint64> sizes;
    for (const QString &path : recordingsIn(folder))
        sizes.insert(path, sizeOf(path));
    if (sizes.isEmpty())
        return {}; // a service that records has begun with a file
    QString found;
    const auto findGrown = [&] {
        for (const QString &path : recordingsIn(folder)) {
            if (sizeOf(path) > sizes.value(path, 0))
                found = path;
        }
        return !found.isEmpty();
    };
    static_cast<void>(waitFor(findGrown, longest));
    return found;
}

bool isWritable(const QString &folder)
{
    QTemporaryFile trial(QDir(folder).filePath(QStringLiteral("ec-XXXXXX.tmp")));
    return trial.open();
}

WrittenFiles writeRequests(const tarnRecording::RequestJournal &journal, const QString &grown,
    const QStringList &before, const QString &targetFolder, milliseconds longest)
{
    const QDeadlineTimer limit(longest);
    WrittenFiles files;
    QList<CheckedRecording> recordings = checkedRecordings(grown, before, files.problems);
    while (!recordings.isEmpty() && !journal.isCoveredBy(recordings.last().content) && !limit.hasExpired()) {
        static_cast<void>(waitFor([] { return false; }, readPause));
        files.problems.clear();
        recordings = checkedRecordings(grown, before, files.problems);
    }
    if (!QFile::exists(grown))
        files.problems << QStringLiteral("%1 is there no more").arg(QDir::toNativeSeparators(grown));
    for (qsizetype number = 0; number < recordings.size(); ++number) {
        const CheckedRecording &each = recordings.at(number);
        tarnRecording::JournalSpan span;
        if (number > 0)
            span.fromUs = each.content.header.clockUs;
        if (number + 1 < recordings.size()) {
            const tarnRecording::RecordingHeader &next = recordings.at(number + 1).content.header;
            span.untilUs = next.clockUs;
            span.goesOn = next.firstAccess > 1; // else the service has been started anew
        }
        const QString target = QDir(targetFolder).filePath(QFileInfo(each.path).fileName());
        const tarnRecording::WrittenRequests written =
            journal.write(tarnRecording::requestsPathOf(target.toStdString()), each.content, span);
        files.paths << each.path;
        if (written)
            files.paths << QString::fromStdString(written.path);
        else
            files.problems << QString::fromStdString(written.problem);
        if (!written.objection.empty()) {
            files.remarks << QStringLiteral("%1, so the requests are in %2.")
                                 .arg(QString::fromStdString(written.objection),
                                     QDir::toNativeSeparators(QString::fromStdString(written.path)));
        }
        if (written.uncovered > 0) {
            files.problems << QStringLiteral("%1 does not go on to the last %2 of what was asked")
                                  .arg(QDir::toNativeSeparators(each.path))
                                  .arg(written.uncovered);
        }
    }
    return files;
}

} // namespace tarnctl
