#include "graphics/graphics_accessory_manager.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/process_wide.h"

#include <QDebug>

namespace tarnAccessoryManager {

using namespace tarnDeviceInfos;

GraphicsAccessoryManager *GraphicsAccessoryManager::instance()
{
    return tarnPlatform::ProcessWide<GraphicsAccessoryManager>::instance();
}

GraphicsAccessoryManager::GraphicsAccessoryManager()
{
    qDebug() << "GraphicsAccessoryManager object is created.";
}

GraphicsAccessoryManager::~GraphicsAccessoryManager()
{
    qDebug() << "GraphicsAccessoryManager object is killed.";
}

void GraphicsAccessoryManager::handleEcAppEvent()
{
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    quint8 event = APP_EVENT_NONE;
    if (ec->readXdata(XEC_APP_EVENT, &event) != 0) {
        qDebug()
            << "GraphicsActive_log & GraphicsDisengaged_log: read ecappevent from xdata when read graphics "
               "disengaged signal form ec failed.";
        return;
    }
    // An event that cannot be acknowledged is handled all the same.
    if (ec->writeXdata(XEC_APP_EVENT, APP_EVENT_NONE) != 0)
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: Failed to write 0 to XEC_APP_EVENT. ";

    if (event == APP_EVENT_GPU_KEY) {
        if (!gpuActive) {
            qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: ignore disengaged signal, gpu is still "
                        "connection after ban it.";
            return;
        }
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: ecAppEvent is 0x11.";
        graphicsDisengagementProcess();
    } else if (event == APP_EVENT_GRAPHICS_CONNECTED) {
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: ecAppEvent is 0x12.";
        handleGraphicsConnectSignal();
    } else if (event == APP_EVENT_BAN_GPU) {
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: ecAppEvent is 0x13.";
        banGpu();
    }
}

void GraphicsAccessoryManager::gpuActiveProcessFirst()
{
    qDebug() << "GraphicsActive_log: Gpu has connected when app begin to run.";
    if (graphicsActiveProcess() != 0) {
        qDebug() << "GraphicsActive_log: Failed to active graphics for first.";
        gpuConnectHandled = true;
        return;
    }
    qDebug() << "GraphicsActive_log: Successed to active graphics for first.";
    gpuActive = true;
    gpuConnectHandled = true;
    resetHdAudioDevice();
}

// The GPU key reaches the service as an event of the EC, so this slot only logs.
void GraphicsAccessoryManager::handleGraphicsDisengagedSignal()
{
    qDebug() << "Received graphics disengaged signal, begin disengagement process.";
}

void GraphicsAccessoryManager::handleGraphicsConnectSignal()
{
    gpuConnectHandled = true;
    qDebug() << "GraphicsActive_log: Received graphics connected signal, begin active process.";
    if (graphicsActiveProcess() != 0) {
        qWarning() << "GraphicsActive_log: Failed to active graphics.";
        return;
    }
    qDebug() << "GraphicsActive_log: Successed to active graphics.";
    gpuActive = true;
    resetHdAudioDevice();
}

} // namespace tarnAccessoryManager
