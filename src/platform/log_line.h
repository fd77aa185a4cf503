#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QtGlobal>

namespace tarnPlatform {

inline constexpr qsizetype longestLogLine = 4096; // bytes, with the line feed

// A line of the log file in UTF-8, with its line feed: "2026-11-21 10:40:17.860 debug 0x7f2a text". The time
// is shown as it is given. What could begin another line, hide characters or reorder them on a screen is
// escaped like in a C string, and what is too long is cut before an ellipsis, so that one message is one line
// whatever a client has put into it.
[[nodiscard]] QByteArray logLine(
    const QDateTime &time, QtMsgType type, Qt::HANDLE thread, const QString &text);

} // namespace tarnPlatform
