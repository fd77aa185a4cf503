#pragma once

#include <QJsonObject>
#include <QString>

namespace tarnPipeServer {

// One message as it goes over the pipe: compact JSON, keys in ascending order, no line end.
QString messageText(const QJsonObject &message);

// An unsolicited message: exactly "cmd" and "data".
QString notificationText(const QString &command, const QString &data);

} // namespace tarnPipeServer
