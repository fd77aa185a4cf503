#pragma once

#include "campaign_machine.h"

#include <QString>

namespace tarnCampaign {

// Compares the service's reports about the GPU with the computer's devices and with the service's own log.
class GpuWatch
{
public:
    explicit GpuWatch(CampaignMachine &watched);

    // From now until the end of the cycle the devices are not what they were at its beginning, so that a
    // report may be out of date.
    void computerChanged() { outOfDate = true; }
    // Takes the log of a cycle; empty when all has been well since the last call.
    [[nodiscard]] QString endCycle();

private:
    void judgeReport(std::uint8_t gpuDriverData);
    [[nodiscard]] std::uint8_t truth() const;
    void judgeLine(const QString &line);

    CampaignMachine &machine;
    QString fault;
    bool outOfDate = false;
    bool broughtUp = false; // and not disabled since, according to the log
};

} // namespace tarnCampaign
