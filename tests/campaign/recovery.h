#pragma once

#include "campaign_machine.h"
#include "random_source.h"

#include <QString>

namespace tarnCampaign {

// Ends all faults and at once carries out one operation, which has to work, whatever was before. The
// code of the accessory that is attached for it goes into *accessoryCode. Empty when it worked.
[[nodiscard]] QString faultOfRecovery(
    CampaignMachine &machine, RandomSource &random, std::uint8_t *accessoryCode);

} // namespace tarnCampaign
