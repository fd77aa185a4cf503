#include "pipe/tarn_pipe_server.h"

#include "device/monitor/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/replies.h"
#include "update/ec_reservation.h"
#include "update/firmware_updater.h"

#include <QDebug>

namespace tarnPipeServer {
namespace {

using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnDeviceInfos::EcDirverReader;
using tarnFirmwareUpdate::FirmwareUpdater;
using tarnFirmwareUpdate::reserveEcForUpdate;

QString mcuVersion()
{
    QString version;
    return EcDirverReader::instance()->getMcuVersion(version);
}

} // namespace

QString TarnPipeServer::requestMcuUpdate(QJsonObject &request)
{
    const bool success = FirmwareUpdater::instance()->copyMcuFile(requestData(request)) == 0;
    if (success)
        request.insert(QStringLiteral("mcuVer"), mcuVersion());
    return replyData(request, outcome(success));
}

QString TarnPipeServer::requestEnterMcuUpdateMode(QJsonObject &request)
{
    qDebug() << "Enter Enter Mcu Update Mode"; // doubled like the command's name
    return replyData(request, outcome(FirmwareUpdater::instance()->enterMcuUpdateMode() == 0));
}

QString TarnPipeServer::requestLeaveMcuUpdateMode(QJsonObject &request)
{
    qDebug() << "Enter Leave Mcu Update Mode";
    if (FirmwareUpdater::instance()->leaveMcuUpdateMode() != 0)
        qWarning() << "The MCU was not in update mode.";
    return messageText(request);
}

// The version tells the client what runs now, whatever came of the leaving. Reading it may wait for an EC
// that another one has taken meanwhile, and the next leave must not wait for that.
QString TarnPipeServer::answerLeaveMcuUpdateMode(QJsonObject &request)
{
    return replyData(request, mcuVersion());
}

QString TarnPipeServer::requestStartEcUpdate(QJsonObject &request)
{
    return replyData(request, outcome(reserveEcForUpdate()));
}

QString TarnPipeServer::requestEcUpdate(QJsonObject &request)
{
    return replyData(request, outcome(FirmwareUpdater::instance()->updateEc(requestData(request))));
}

// The request comes back as it was sent: there is nothing to answer.
QString TarnPipeServer::requestBeginGraphicsMcuUpdate(QJsonObject &request)
{
    qDebug() << "Ban gpu before gpu mcu update.";
    GraphicsAccessoryManager::instance()->banGpuForMcuUpdate();
    return messageText(request);
}

} // namespace tarnPipeServer
