#include "graphics/peg_state_report.h"

#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"

#include <QDebug>

namespace tarnAccessoryManager {

using namespace tarnDeviceInfos;

bool reportPegState(int gpuDriverData, const PegStateWords &words)
{
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    if (ec->writeXdata(XEC_APP_CMD_DATA0, static_cast<quint8>(gpuDriverData)) != 0) {
        qWarning() << words.dataFailed << gpuDriverData << "to XEC_APP_CMD_DATA0. ";
        return false;
    }
    if (words.dataDone)
        qDebug() << words.dataDone << gpuDriverData << "to XEC_APP_CMD_DATA0.";
    if (ec->writeXdata(XEC_APP_CMD, APP_CMD_PEG_STATE) != 0) {
        qWarning() << words.commandFailed;
        return false;
    }
    qDebug() << words.commandDone;
    return true;
}

} // namespace tarnAccessoryManager
