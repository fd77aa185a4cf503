#include "pipe/command.h"

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

QString requestMcuUpdate(QJsonObject &request)
{
    const bool success = FirmwareUpdater::instance()->copyMcuFile(requestData(request)) == 0;
    if (success)
        request.insert(QStringLiteral("mcuVer"), mcuVersion());
    return replyData(request, outcome(success));
}

QString requestEnterMcuUpdateMode(QJsonObject &request)
{
    qDebug() << "Enter Enter Mcu Update Mode"; // the verb, then the command's own "Enter"
    return replyData(request, outcome(FirmwareUpdater::instance()->enterMcuUpdateMode() == 0));
}

QString requestLeaveMcuUpdateMode(QJsonObject &request)
{
    qDebug() << "Enter Leave Mcu Update Mode";
    if (FirmwareUpdater::instance()->leaveMcuUpdateMode() != 0)
        qWarning() << "The MCU was not in update mode.";
    return messageText(request);
}

// Replies with the version that runs now, whether or not leaving has succeeded. Reading it may wait for the
// EC, which another handler may have taken meanwhile, and the next leave must not wait for that.
QString answerLeaveMcuUpdateMode(QJsonObject &request)
{
    return replyData(request, mcuVersion());
}

QString requestStartEcUpdate(QJsonObject &request)
{
    return replyData(request, outcome(reserveEcForUpdate()));
}

QString requestEcUpdate(QJsonObject &request)
{
    return replyData(request, outcome(FirmwareUpdater::instance()->updateEc(requestData(request))));
}

// Replies with the unchanged request, because there is no result to report.
QString requestBeginGraphicsMcuUpdate(QJsonObject &request)
{
    qDebug() << "Ban gpu before gpu mcu update.";
    GraphicsAccessoryManager::instance()->banGpuForMcuUpdate();
    return messageText(request);
}

constexpr Command firmwareTable[] = {
    {"requestMcuUpdate", &requestMcuUpdate, Lane::WaitsForEc},
    {"requestEnterMcuUpdateMode", &requestEnterMcuUpdateMode, Lane::WaitsForEc},
    {"requestLeaveMcuUpdateMode", &requestLeaveMcuUpdateMode, Lane::LeavesMcuUpdateMode,
        &answerLeaveMcuUpdateMode},
    {"requestStartEcUpdate", &requestStartEcUpdate, Lane::WaitsForEc},
    {"requestEcUpdate", &requestEcUpdate, Lane::UpdatesEc},
    {"requestBeginGraphicsMcuUpdate", &requestBeginGraphicsMcuUpdate, Lane::NeverWaits},
};

} // namespace

std::span<const Command> firmwareCommands()
{
    return firmwareTable;
}

} // namespace tarnPipeServer
