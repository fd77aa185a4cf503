#pragma once

#include "random_source.h"

#include <QJsonObject>

namespace tarnCampaign {

// A request that clients may send, sensible or not. `withoutEc`: only such as do not wait for the EC, for
// the time in which it is held. What would take the EC for good is not among them.
[[nodiscard]] QJsonObject randomRequest(RandomSource &random, bool withoutEc);

} // namespace tarnCampaign
