#pragma once

#include <QDateTime>
#include <QString>

namespace tarnPanel {

enum class MessageKind {
    Sent,
    Answer,
    // What became of a request that got no answer.
    NotAnswered,
    Notification,
    Other,
    Garbage,
    Connection,
};

inline constexpr int messageKindCount = static_cast<int>(MessageKind::Connection) + 1;

[[nodiscard]] QString nameOf(MessageKind kind);

struct Message
{
    QDateTime time;
    MessageKind kind = MessageKind::Other;
    QString text;
};

} // namespace tarnPanel
