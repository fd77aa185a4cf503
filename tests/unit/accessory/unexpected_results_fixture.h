#pragma once

#include "ec_stand_in.h"
#include "power_mode_fixture.h"

namespace tarnTest {

// The power manager with a driver that gives results outside the known ones.
class UnexpectedResultsTest : public EcLockTest
{
protected:
    UnexpectedResultsTest()
        : ec(EcStandIn::install())
        , manager(tarnAccessoryManager::EcPowerModeManager::instance())
    {
        machine.log.clear();
    }

    EcStandIn *ec;
    tarnAccessoryManager::EcPowerModeManager *manager;
};

} // namespace tarnTest
