#include "support/log_capture.h"

#include "support/seen_texts.h"

#include <atomic>
#include <cstdio>

namespace tarnTest {
namespace {

std::atomic<LogCapture *> active {nullptr};

const char *kindOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtFatalMsg:
        return "fatal";
    default:
        return "warning";
    }
}

QString shown(const LogLine &line)
{
    return (line.type == QtWarningMsg ? QStringLiteral("W: ") : QString()) + line.text;
}

} // namespace

LogCapture::LogCapture()
    : before(qInstallMessageHandler(collect))
{
    active = this;
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(before);
    active = nullptr;
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&mutex);
    QStringList texts;
    for (const LogLine &line : collected)
        texts << shown(line);
    return texts;
}

QStringList LogCapture::ownLines() const
{
    const QMutexLocker locker(&mutex);
    QStringList texts;
    for (const LogLine &line : collected) {
        if (line.thread == QThread::currentThreadId())
            texts << shown(line);
    }
    return texts;
}

void LogCapture::clear()
{
    const QMutexLocker locker(&mutex);
    collected.clear();
}

void LogCapture::collect(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    noteSeen(kindOf(type), text);
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text)); // for death tests
        writeSeenTexts();
    }
    LogCapture *capture = active;
    if (!capture)
        return;
    if (capture->onLine)
        capture->onLine(text);
    const QMutexLocker locker(&capture->mutex);
    capture->collected.push_back({type, text, QThread::currentThreadId()});
}

} // namespace tarnTest
