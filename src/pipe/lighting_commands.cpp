#include "pipe/tarn_pipe_server.h"

#include "accessory/dock_accessory_manager.h"
#include "pipe/replies.h"

#include <QDebug>

namespace tarnPipeServer {

using tarnAccessoryManager::DockAccessoryManager;

QString TarnPipeServer::getDockLedStatus(QJsonObject &request)
{
    const int status = DockAccessoryManager::instance()->getDockLedStatus();
    if (status == 1)
        return replyData(request, QStringLiteral("on"));
    if (status == 0)
        return replyData(request, QStringLiteral("off"));
    qDebug() << "Get unknown dock led status: " << status;
    return replyData(request, QStringLiteral("unknown"));
}

QString TarnPipeServer::setDockLedStatus(QJsonObject &request)
{
    const QString data = requestData(request);
    const bool on = data == QStringLiteral("on");
    if (!on && data != QStringLiteral("off")) {
        qDebug() << "Unknown command: " << data;
        return replyResult(request, false);
    }
    return replyResult(request, DockAccessoryManager::instance()->setDockLedStatus(on ? 1 : 0) == 0);
}

} // namespace tarnPipeServer
