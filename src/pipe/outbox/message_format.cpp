#include "pipe/outbox/message_format.h"

#include <QJsonDocument>

namespace tarnPipeServer {

QString messageText(const QJsonObject &message)
{
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

QString notificationText(const QString &command, const QString &data)
{
    return messageText({{QStringLiteral("cmd"), command}, {QStringLiteral("data"), data}});
}

} // namespace tarnPipeServer
