#include "pipe/tarn_pipe_server.h"

#include "device/ec_access_lock.h"
#include "device/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/replies.h"
#include "update/firmware_updater.h"
#include "update/tool_run.h"

#include <QDebug>
#include <QMutex>

namespace tarnPipeServer {
namespace {

using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnDeviceInfos::EcDirverReader;
using tarnFirmwareUpdate::FirmwareUpdater;
using tarnFirmwareUpdate::isToolLeftRunning;

constexpr char ecSettingsFile[] = "./function/EC/uiset.ini";

// Settings, firmware file and tool are one set, which two updates at a time would mix up.
QMutex &ecUpdateTurn()
{
    static auto *turn = new QMutex; // never destroyed: a tool may still run when the process ends
    return *turn;
}

QString mcuVersion()
{
    QString version;
    return EcDirverReader::instance()->getMcuVersion(version);
}

// False before the tool is run; then it counts as done whatever the tool did.
bool updateEc(const QString &fileName)
{
    // An EC tool that an earlier run of the service has left behind still needs its settings and its file.
    if (isToolLeftRunning())
        return false;
    FirmwareUpdater *updater = FirmwareUpdater::instance();
    if (!updater->modifyEcIniFile(ecSettingsFile, fileName.toLocal8Bit().toStdString())) {
        qDebug() << "write uiset.ini file failed!";
        return false;
    }
    if (updater->copyEcFile(fileName) != 0)
        return false;
    EcDirverReader *monitor = EcDirverReader::instance();
    monitor->setEcUpdating(true);
    // A tool that is started while the process ends would flash an EC that others still talk to.
    if (!monitor->isEcUpdating() || tarnDeviceInfos::ecAccessMutex.isReleased())
        return false;
    updater->ecUpdate();
    return true;
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
    EcDirverReader *monitor = EcDirverReader::instance();
    monitor->setEcUpdating(true);
    return replyData(request, outcome(monitor->isEcUpdating()));
}

QString TarnPipeServer::requestEcUpdate(QJsonObject &request)
{
    const QMutexLocker locker(&ecUpdateTurn());
    const bool success = updateEc(requestData(request));
    // Lowered on every way out, but not when nobody raised it: lowering takes the EC lock for good.
    EcDirverReader *monitor = EcDirverReader::instance();
    if (monitor->isEcUpdating())
        monitor->setEcUpdating(false);
    return replyData(request, outcome(success));
}

// The request comes back as it was sent: there is nothing to answer.
QString TarnPipeServer::requestBeginGraphicsMcuUpdate(QJsonObject &request)
{
    qDebug() << "Ban gpu before gpu mcu update.";
    GraphicsAccessoryManager::instance()->banGpuForMcuUpdate();
    return messageText(request);
}

} // namespace tarnPipeServer
