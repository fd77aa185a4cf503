#include "profile_file_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;
using tarnTest::balanceProfile;
using tarnTest::InItsPlace;
using tarnTest::neverRestored;
using tarnTest::ProfileFileTest;
using tarnTest::restoreFailed;
using tarnTest::savedBalance;
using tarnTest::savedHigh;
using tarnTest::Unprivileged;
using tarnTest::usualPl1;

// One way in which there is no saved profile, with the words for what becomes of it.
struct NoSavedProfile
{
    const char *name;
    QStringList before;
    QString failed;
    QStringList applied;
    QString notCreated;
    QString notWritten;
    QString written;
};

namespace {

const QStringList balanceApplied {"set ec powermode to balance done."};

const NoSavedProfile noSavedProfiles[] = {
    {"Absent", {}, "Failed to set ec powermode to balance for first when app begin.", {},
        "W: Failed to create the configuration file but set ec powermode to balance for first successed.",
        "W: Error writing to the configuration file but set ec powermode to balance for first successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance for first successed."},
    {"NotOpened", {"W: The configuration file exists but failed to open."},
        "set ec powermode to balance failed.", balanceApplied,
        "W: Failed to create the configuration file but set ec powermode to balance when app begin "
        "successed.",
        "W: Error writing to the configuration file but set ec powermode to balance when app begin "
        "successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance when app begin "
        "successed."},
    {"NotRead", {"W: Open the configuration file successed but failed to read data."},
        "Failed to set ec powermode to balance when app begin.", {},
        "W: Failed to create the configuration file but set ec powermode to balance when begin successed.",
        "W: Error writing to the configuration file but set ec powermode to balance when begin successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance when begin "
        "successed."},
    {"Unexpected", {"read from configuration file successed with unexpected data."},
        "set ec powermode to balance when app begin failed.", balanceApplied,
        "W: Failed to create the configuration file but set ec powermode to balance when app begin "
        "successed.",
        "W: Error writing to the configuration file but set ec powermode to balance when app begin "
        "successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance when app begin "
        "successed."},
};

} // namespace

class WithoutSavedProfile : public ProfileFileTest, public ::testing::WithParamInterface<NoSavedProfile>
{
protected:
    void SetUp() override
    {
        const QString name = GetParam().name;
        if (name == "NotOpened")
            replaceProfileFile(InItsPlace::Folder);
        else if (name == "NotRead")
            replaceProfileFile(InItsPlace::ReadError);
        else if (name == "Unexpected")
            save("high");
    }

    void expectBalance() const
    {
        EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
        EXPECT_EQ(manager->lastRestoreResult(), 0);
        EXPECT_EQ(reg(EC_POWERMODE_PL1), usualPl1(balanceProfile));
        EXPECT_EQ(linesBeforeApplication(), GetParam().before);
    }

    // The kind of what stands in the file's place; links are not followed.
    [[nodiscard]] QString place() const
    {
        const QFileInfo info(profilePath());
        return info.isSymLink() ? info.symLinkTarget()
            : info.isDir()      ? QString("folder")
                                : QString(savedBytes());
    }
};

TEST_P(WithoutSavedProfile, BalanceIsAppliedAndSaved)
{
    if (GetParam().name != QString("Unexpected"))
        replaceDuringApplication(InItsPlace::Nothing); // the obstacle has gone
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    expectBalance();
    EXPECT_EQ(savedBytes(), savedBalance);
    EXPECT_EQ(linesAfterApplication(), GetParam().applied + QStringList({GetParam().written}));
}

TEST_P(WithoutSavedProfile, AFileThatCannotBeCreatedIsReported)
{
    replaceDuringApplication(InItsPlace::Folder);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -1);
    expectBalance();
    EXPECT_EQ(linesAfterApplication(), GetParam().applied + QStringList({GetParam().notCreated}));
}

TEST_P(WithoutSavedProfile, AFileThatCannotBeWrittenIsReported)
{
    replaceDuringApplication(InItsPlace::FullDisk);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -1);
    expectBalance();
    EXPECT_EQ(linesAfterApplication(), GetParam().applied + QStringList({GetParam().notWritten}));
}

TEST_P(WithoutSavedProfile, AnECThatDoesNotTakeBalanceIsReported)
{
    const QString placeBefore = place();
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL1);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -2);
    EXPECT_EQ(manager->currentPowerMode(), restoreFailed);
    EXPECT_EQ(manager->lastRestoreResult(), -2);
    EXPECT_EQ(place(), placeBefore);
    EXPECT_EQ(linesBeforeApplication(), GetParam().before);
    EXPECT_EQ(machine.log.lines().mid(machine.log.lines().size() - 2),
        QStringList({QString("W: set ec PL1 to  %1  failed when write.").arg(usualPl1(balanceProfile)),
            GetParam().failed}));
    machine.faults().clear();

    machine.faults().switchOn(Fault::ReadbackOffset, -11);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -2);
    EXPECT_EQ(manager->currentPowerMode(), restoreFailed);
    EXPECT_EQ(manager->lastRestoreResult(), -1);
    EXPECT_EQ(place(), placeBefore);
    EXPECT_EQ(machine.log.lines().last(), GetParam().failed);
}

INSTANTIATE_TEST_SUITE_P(Cases, WithoutSavedProfile, ::testing::ValuesIn(noSavedProfiles),
    [](const auto &row) { return std::string(row.param.name); });

using PowerModeRestore = ProfileFileTest;

TEST_F(PowerModeRestore, IsNotMadeUnasked)
{
    EXPECT_EQ(manager->currentPowerMode(), neverRestored);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
    EXPECT_TRUE(machine.traffic().isEmpty());
}

TEST_F(PowerModeRestore, AFileThatMayBeWrittenButNotReadIsRepaired)
{
    save(savedHigh);
    tarnTest::setMode(profilePath(), 0222);
    {
        const Unprivileged unprivileged;
        EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    }
    tarnTest::setMode(profilePath(), 0666);
    EXPECT_EQ(savedBytes(), savedBalance);
    EXPECT_EQ(machine.log.lines().first(), "W: The configuration file exists but failed to open.");
}

TEST_F(PowerModeRestore, AnUnreadableFileThatCannotBeRepairedIsReported)
{
    save(savedHigh);
    tarnTest::setMode(profilePath(), 0);
    {
        const Unprivileged unprivileged;
        EXPECT_EQ(manager->restorePowerModeAtStart(), -1);
    }
    tarnTest::setMode(profilePath(), 0666);
    EXPECT_EQ(savedBytes(), savedHigh);
    EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
}

TEST_F(PowerModeRestore, AReadOnlyFolderWithoutAFileIsReported)
{
    tarnTest::setMode(machine.folder.path("."), 0555);
    const Unprivileged unprivileged;
    EXPECT_EQ(manager->restorePowerModeAtStart(), -1);
    EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
    EXPECT_EQ(machine.log.lines().last(),
        "W: Failed to create the configuration file but set ec powermode to balance for first successed.");
}
