#pragma once

#include "tarn/client.h"

#include <QJsonObject>

namespace tarnctl {

// Shown in place of an answer to a request that gets none.
inline constexpr QLatin1StringView sentText("sent");

// The answer to a command in plain text, several lines where it has several values.
[[nodiscard]] QString answerText(const QString &command, const QJsonObject &answer);
// The command and its answer in one line.
[[nodiscard]] QString answerLine(const QString &command, const QJsonObject &answer);
// The same of an answer that says itself to which command it is.
[[nodiscard]] QString lateAnswerLine(const QJsonObject &answer);
[[nodiscard]] QString notificationLine(const tarn::Notification &notification);

// In one line, as --json shows it.
[[nodiscard]] QByteArray compactJson(const QJsonObject &message);
[[nodiscard]] QByteArray compactJson(const tarn::Notification &notification);

} // namespace tarnctl
