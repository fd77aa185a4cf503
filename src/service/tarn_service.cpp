#include "service/tarn_service.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/monitor/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/tarn_pipe_server.h"
#include "update/leftover_ec_tool.h"

#include <QDebug>

using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnDeviceInfos::EcDirverControllerHal;
using tarnDeviceInfos::EcDirverReader;
using tarnFirmwareUpdate::LeftoverEcTool;
using tarnPipeServer::TarnPipeServer;

TarnService::TarnService(int argc, char **argv)
    : QtService<QCoreApplication>(argc, argv, QStringLiteral("Tarn Service"))
{
    setServiceDescription(QStringLiteral("Tarn Service in Windows"));
    setServiceFlags(CanBeSuspended);
    qDebug() << startupType;
    setStartupType(static_cast<StartupType>(startupType));
}

TarnService::~TarnService() = default;

void TarnService::start()
{
    qDebug() << "Main Thread: " << QThread::currentThread();
    qDebug() << "TarnService::start";
    leftoverEcTool = std::make_unique<LeftoverEcTool>(); // before any other object can take the EC
    EcDirverControllerHal::instance();
    pipeServer = TarnPipeServer::instance();
    ecReader = EcDirverReader::instance();
    GraphicsAccessoryManager *graphics = GraphicsAccessoryManager::instance();
    // The monitor calls the manager directly; the connection is for any other code that emits the signal.
    QObject::connect(ecReader, &EcDirverReader::graphicsConnectSignal, graphics,
        &GraphicsAccessoryManager::handleGraphicsConnectSignal);
    ecReader->start(QThread::InheritPriority);
}

void TarnService::stop()
{
    qDebug() << "TarnService::stop";
    if (!ecReader)
        return;
    qDebug() << "service is Finish!";
    ecReader->quit();
    ecReader->deleteLater();
}

void TarnService::pause()
{
    qDebug() << "TarnService::pause";
}

void TarnService::resume()
{
    qDebug() << "TarnService::resume";
}
