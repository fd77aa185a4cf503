#include "update/ec_reservation.h"

#include "device/monitor/ec_dirver_reader.h"

namespace tarnFirmwareUpdate {

using tarnDeviceInfos::EcDirverReader;

bool reserveEcForUpdate()
{
    EcDirverReader *monitor = EcDirverReader::instance();
    monitor->setEcUpdating(true);
    return monitor->isEcUpdating();
}

void markEcUpdateOver()
{
    EcDirverReader *monitor = EcDirverReader::instance();
    if (monitor->isEcUpdating()) // else the call would take the EC and keep it
        monitor->setEcUpdating(false);
}

} // namespace tarnFirmwareUpdate
