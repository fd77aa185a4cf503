#include "campaign.h"

#include <QElapsedTimer>

#include <iostream>

namespace {

// By hand: TARN_CAMPAIGN_SEED repeats a run, TARN_CAMPAIGN_CYCLES makes it longer.
std::uint64_t numberFromEnvironment(const char *name, std::uint64_t otherwise)
{
    bool isNumber = false;
    const qulonglong number = qEnvironmentVariable(name).toULongLong(&isNumber);
    return isNumber ? number : otherwise;
}

// The share of the cycles that this run makes, and how many looks at its status the EC needs to take a byte.
void runCampaign(int divisor, std::uint32_t acceptancePolls)
{
    const std::uint64_t seed = numberFromEnvironment("TARN_CAMPAIGN_SEED", 1);
    const auto cycles = static_cast<int>(numberFromEnvironment("TARN_CAMPAIGN_CYCLES", 4000)) / divisor;
    tarnCampaign::CampaignMachine machine;
    machine.computer.timing().acceptancePolls.store(acceptancePolls);
    tarnCampaign::Campaign campaign(machine, seed, cycles);
    QElapsedTimer timer;
    timer.start();
    const QString fault = campaign.run();
    std::cout << "seed " << seed << ": " << campaign.cyclesDone() << " cycles, " << campaign.requestsSent()
              << " requests, " << campaign.recoveriesTried() << " recoveries, "
              << machine.clock.now().count() / 1000 << " virtual seconds in " << timer.elapsed() << " ms\n";
    EXPECT_TRUE(fault.isEmpty()) << "TARN_CAMPAIGN_SEED=" << seed
                                 << " TARN_CAMPAIGN_CYCLES=" << cycles * divisor << '\n'
                                 << fault.toStdString();
    EXPECT_GE(campaign.cyclesDone(), cycles);
    EXPECT_GT(campaign.recoveriesTried(), 0);
}

} // namespace

TEST(FaultCampaign, KeepsTheRulesWhateverHappens)
{
    runCampaign(1, 0);
}

TEST(FaultCampaign, KeepsTheRulesWithAnEcThatTakesItsTime)
{
    runCampaign(5, 2);
}
