#include "graphics/graphics_accessory_manager.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "platform/process_wide.h"

#include <QDebug>

namespace tarnAccessoryManager {

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
    using namespace tarnDeviceInfos;
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    quint8 event = APP_EVENT_NONE;
    if (ec->readXdata(XEC_APP_EVENT, &event) != 0) {
        qDebug()
            << "GraphicsActive_log & GraphicsDisengaged_log: read ecappevent from xdata when read graphics "
               "disengaged signal form ec failed.";
        return;
    }
    if (ec->writeXdata(XEC_APP_EVENT, APP_EVENT_NONE) != 0)
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: Failed to write 0 to XEC_APP_EVENT. ";
}

void GraphicsAccessoryManager::gpuActiveProcessFirst()
{
    qDebug() << "GraphicsActive_log: Gpu has connected when app begin to run.";
}

void GraphicsAccessoryManager::handleGraphicsConnectSignal()
{
    qDebug() << "GraphicsActive_log: Received graphics connected signal, begin active process.";
}

} // namespace tarnAccessoryManager
