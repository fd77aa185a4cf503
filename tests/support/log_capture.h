#pragma once

#include "support/printing.h"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThread>

#include <functional>
#include <vector>

namespace tarnTest {

struct LogLine
{
    QtMsgType type;
    QString text;
    Qt::HANDLE thread;
};

// Collects what is logged for as long as it lives; nothing is printed. Fatal messages still end the process.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();

    // All lines so far; warnings are marked with "W: ".
    [[nodiscard]] QStringList lines() const;
    // Only those of the calling thread: others may log in between.
    [[nodiscard]] QStringList ownLines() const;
    [[nodiscard]] bool contains(const QString &line) const { return lines().contains(line); }
    [[nodiscard]] qsizetype count(const QString &line) const { return lines().count(line); }
    void clear();
    // Called for each line on the thread that logs it, at that moment.
    std::function<void(const QString &text)> onLine;

private:
    static void collect(QtMsgType type, const QMessageLogContext &context, const QString &text);

    mutable QMutex mutex;
    std::vector<LogLine> collected;
    QtMessageHandler before;
};

} // namespace tarnTest
