#include "load/figure_table.h"
#include "load/kill_campaign.h"
#include "load/load_scale.h"

#include <gtest/gtest.h>

class KillCampaign : public ::testing::TestWithParam<std::uint64_t>
{ };

TEST_P(KillCampaign, KeepsWhatWasConfirmedAndComesBack)
{
    const std::uint64_t seed = tarnLoad::seed() + GetParam();
    const auto kills =
        static_cast<int>(tarnLoad::numberFromEnvironment("TARN_LOAD_KILLS", tarnLoad::scaled(1U, 15U)));
    tarnLoad::KillCampaign campaign(seed, kills);
    QElapsedTimer timer;
    timer.start();
    const QString fault = campaign.run();
    tarnLoad::report(QStringLiteral("kills, seed %1").arg(seed),
        QStringLiteral("%1 in %2 s, %3 of them in file work, %4 requests confirmed, %5 cut short")
            .arg(campaign.killsDone())
            .arg(tarnLoad::seconds(timer.elapsed()))
            .arg(campaign.killsInFileWork())
            .arg(campaign.confirmedRequests())
            .arg(campaign.unconfirmedRequests()));
    EXPECT_TRUE(fault.isEmpty()) << "the first test with TARN_LOAD_SEED=" << seed
                                 << " TARN_LOAD_KILLS=" << kills << '\n'
                                 << fault.toStdString();
}

// Side by side in the test suite; scripts/load takes the first with its own seeds.
INSTANTIATE_TEST_SUITE_P(Seeds, KillCampaign, ::testing::Range<std::uint64_t>(0, 5));
