#include "update/firmware_updater.h"

#include "platform/process_wide.h"

namespace tarnFirmwareUpdate {

FirmwareUpdater *FirmwareUpdater::instance()
{
    return tarnPlatform::ProcessWide<FirmwareUpdater>::instance();
}

} // namespace tarnFirmwareUpdate
