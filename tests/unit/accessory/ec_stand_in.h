#pragma once

#include "device/ec_dirver_controller_hal.h"
#include "platform/process_wide.h"

#include <map>

namespace tarnTest {

// The driver, except that chosen registers give chosen results at once, without touching the EC.
class EcStandIn : public tarnDeviceInfos::EcDirverControllerHal
{
public:
    // To be called before the first use of the driver.
    static EcStandIn *install()
    {
        auto *standIn = new EcStandIn;
        tarnPlatform::ProcessWide<tarnDeviceInfos::EcDirverControllerHal>::adopt(standIn);
        return standIn;
    }

    int readXdata(quint16 address, quint8 *value) override
    {
        const auto result = readResults.find(address);
        return result == readResults.end() ? EcDirverControllerHal::readXdata(address, value)
                                           : result->second;
    }

    int writeXdata(quint16 address, quint8 value) override
    {
        const auto result = writeResults.find(address);
        return result == writeResults.end() ? EcDirverControllerHal::writeXdata(address, value)
                                            : result->second;
    }

    std::map<quint16, int> readResults;
    std::map<quint16, int> writeResults;
};

} // namespace tarnTest
