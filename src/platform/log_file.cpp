#include "platform/log_file.h"

#include "platform/files.h"
#include "platform/log_line.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>
#include <QThread>

namespace tarnPlatform {
namespace {

constexpr qint64 retryMs = 1000;
constexpr qint64 reopenMs = 1000;

QByteArray lineOf(QtMsgType type, const QString &text)
{
    return logLine(QDateTime::currentDateTime(), type, QThread::currentThreadId(), text);
}

} // namespace

LogFile::LogFile(const QString &logFolder)
    : LogFile(logFolder, {renameFile, [](const QString &name) {
                              return QFile::remove(name);
                          }})
{ }

LogFile::LogFile(const QString &logFolder, const Moves &fileMoves)
    : folder(logFolder)
    , moves(fileMoves)
{ }

QString LogFile::fileName(int number)
{
    return number == 0 ? QStringLiteral("TarnService.log") : QStringLiteral("TarnService.%1.log").arg(number);
}

void LogFile::write(QtMsgType type, const QString &text)
{
    const QByteArray line = lineOf(type, text);
    const QMutexLocker locker(&mutex);
    const bool canWait = type == QtDebugMsg || type == QtInfoMsg;
    if (canWait && sinceFailure.isValid() && !sinceFailure.hasExpired(retryMs)) {
        ++lost;
        return;
    }
    const QByteArray gap = lost == 0
        ? QByteArray()
        : lineOf(QtWarningMsg, QStringLiteral("%1 lines are missing here").arg(lost));
    if (isReadyFor(gap.size() + line.size()) && append(gap + line)) {
        lost = 0;
        sinceFailure.invalidate();
        return;
    }
    ++lost;
    sinceFailure.start();
}

// Another process may write to the same file, and anybody may have renamed or removed it: so it is opened
// anew from time to time. A byte of room stays for append().
bool LogFile::isReadyFor(qsizetype bytes)
{
    const auto hasRoom = [bytes](qint64 size) {
        return size + bytes < largestSize;
    };
    if (file.isOpen() && hasRoom(sizeOfOpened(file)) && !sinceOpening.hasExpired(reopenMs))
        return true;
    file.close();
    if (!hasRoom(QFileInfo(path(0)).size()))
        putAside();
    return openCurrent() && hasRoom(sizeOfOpened(file));
}

bool LogFile::openCurrent()
{
    QDir().mkpath(folder);
    file.setFileName(path(0));
    sinceOpening.start();
    return openToAppend(file);
}

// What is written in part is ended by a line feed of the next line.
bool LogFile::append(const QByteArray &line)
{
    const QByteArray bytes = endsInsideLine ? '\n' + line : line;
    const qint64 written = file.write(bytes);
    if (written == bytes.size()) {
        endsInsideLine = false;
        return true;
    }
    endsInsideLine = endsInsideLine || written > 0;
    file.close();
    return false;
}

// The current file becomes the newest of the earlier ones. A file that a viewer keeps from being renamed
// stays where it is, and the others go round it. When the current one is kept, it is copied and emptied: the
// newest lines and the bound on the size are worth more than those before.
void LogFile::putAside()
{
    int room = freeNumber();
    for (int number = room - 1; number >= 0; --number) {
        if (moves.rename(path(number), path(room)))
            room = number;
    }
    if (!QFileInfo::exists(path(0)))
        return;
    if (room > 0)
        QFile::copy(path(0), path(room));
    QFile::resize(path(0), 0);
}

// The oldest file makes room if no number is free; 0 when none can.
int LogFile::freeNumber() const
{
    for (int number = 1; number <= earlierFiles; ++number) {
        if (!QFileInfo::exists(path(number)))
            return number;
    }
    int number = earlierFiles;
    while (number > 0 && !moves.remove(path(number)))
        --number;
    return number;
}

} // namespace tarnPlatform
