#include "accessory/ec_power_mode_manager.h"

#include "platform/process_wide.h"

#include <QDebug>

namespace tarnAccessoryManager {

EcPowerModeManager *EcPowerModeManager::instance()
{
    return tarnPlatform::ProcessWide<EcPowerModeManager>::instance();
}

EcPowerModeManager::EcPowerModeManager()
{
    qDebug() << "EcPowerModeManager object is created.";
}

EcPowerModeManager::~EcPowerModeManager()
{
    qDebug() << "EcPowerModeManager object is killed.";
}

} // namespace tarnAccessoryManager
