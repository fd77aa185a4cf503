#include "accessory/power_mode_file.h"

#include "profile_file_fixture.h"
#include "support/resource_limit.h"

#include <fcntl.h>
#include <sys/mman.h>

using namespace tarnDeviceInfos;
using tarnAccessoryManager::PowerModeFile;
using tarnAccessoryManager::PowerProfile;
using tarnAccessoryManager::powerProfiles;
using tarnSimulator::Fault;
using tarnTest::balanceProfile;
using tarnTest::highProfile;
using tarnTest::InItsPlace;
using tarnTest::lowProfile;
using tarnTest::ProfileFileTest;
using tarnTest::savedBalance;
using tarnTest::savedHigh;
using tarnTest::savedLow;
using tarnTest::Unprivileged;

using PowerModeSaving = ProfileFileTest;

class EachPowerMode : public ProfileFileTest, public ::testing::WithParamInterface<PowerProfile>
{
protected:
    const PowerProfile &profile = GetParam();

    [[nodiscard]] QString text(const char *format) const { return QString(format).arg(profile.name); }
    [[nodiscard]] QByteArray ownBytes() const { return QByteArray::number(profile.number); }
    int apply() { return manager->setEcPowerMode(static_cast<quint32>(profile.number)); }
};

TEST_P(EachPowerMode, IsAppliedAndSaved)
{
    EXPECT_EQ(apply(), 0);
    EXPECT_EQ(savedBytes(), ownBytes());
    EXPECT_EQ(reg(EC_POWERMODE_PL1), profile.fullSupply.pl1);
    EXPECT_EQ(linesBeforeApplication(), QStringList({"begin to set ec powermode."}));
    EXPECT_EQ(linesAfterApplication(),
        QStringList({text("set ec powermode to %1 done."),
            text("Successfully wrote to the configuration file when set ec powermode to %1 successed.")}));
    // Only a restore says which profile is in force.
    EXPECT_EQ(manager->currentPowerMode(), tarnTest::neverRestored);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
}

TEST_P(EachPowerMode, IsNotSavedWhenTheECDoesNotTakeIt)
{
    save("x");
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL4); // result -2 of the application
    EXPECT_EQ(apply(), -1);
    EXPECT_EQ(savedBytes(), "x");
    EXPECT_EQ(machine.log.lines().last(), text("W: set ec powermode to %1 failed."));
    machine.faults().clear();

    machine.faults().switchOn(Fault::ReadbackOffset, 11); // result -1 of the application
    EXPECT_EQ(apply(), -1);
    EXPECT_EQ(savedBytes(), "x");
    EXPECT_EQ(machine.log.lines().last(), text("W: set ec powermode to %1 failed."));
}

TEST_P(EachPowerMode, IsAppliedThoughItsFileCannotBeCreated)
{
    replaceProfileFile(InItsPlace::Folder);
    EXPECT_EQ(apply(), 0);
    EXPECT_EQ(linesAfterApplication(),
        QStringList({text("set ec powermode to %1 done."),
            text("W: Failed to create the configuration file but set ec powermode to %1 successed.")}));
}

TEST_P(EachPowerMode, IsAppliedThoughItsFileCannotBeWritten)
{
    replaceProfileFile(InItsPlace::FullDisk);
    EXPECT_EQ(apply(), 0);
    EXPECT_EQ(linesAfterApplication(),
        QStringList({text("set ec powermode to %1 done."),
            text("W: Error writing to the configuration file but set ec powermode to %1 successed.")}));
}

INSTANTIATE_TEST_SUITE_P(Profiles, EachPowerMode, ::testing::ValuesIn(powerProfiles),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(PowerModeSaving, TouchesTheFileOnlyAfterTheECHasTakenTheProfile)
{
    save(savedLow);
    QByteArray during;
    machine.clock.at(
        tarnTest::milliseconds(214), [&] { during = savedBytes(); }); // just before the last write
    EXPECT_EQ(manager->setEcPowerMode(highProfile), 0);
    EXPECT_EQ(during, savedLow);
    EXPECT_EQ(savedBytes(), savedHigh);
}

TEST_F(PowerModeSaving, AReadOnlyFileIsNoFailureAndKeepsItsContent)
{
    save(savedLow);
    tarnTest::setMode(profilePath(), 0444);
    {
        const Unprivileged unprivileged;
        EXPECT_EQ(manager->setEcPowerMode(highProfile), 0);
    }
    EXPECT_EQ(savedBytes(), savedLow);
}

class NoPowerMode : public ProfileFileTest, public ::testing::WithParamInterface<unsigned>
{ };

TEST_P(NoPowerMode, TouchesNeitherTheECNorTheFile)
{
    EXPECT_EQ(manager->setEcPowerMode(GetParam()), -2);
    EXPECT_FALSE(QFileInfo::exists(profilePath()));
    save(savedLow);
    EXPECT_EQ(manager->setEcPowerMode(GetParam()), -2);
    EXPECT_EQ(savedBytes(), savedLow);
    EXPECT_TRUE(machine.traffic().isEmpty());
    EXPECT_EQ(elapsed(), 0);
    const QStringList once {"begin to set ec powermode.", "W: Invalid behavior input for setEcPowerMode."};
    EXPECT_EQ(machine.log.lines(), once + once);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, NoPowerMode, ::testing::Values(3U, tarnTest::numberBeyondProfiles, 255U, 256U, 0xFFFFFFFFU));

// The file by itself.
using ProfileFile = ProfileFileTest;

TEST_F(ProfileFile, IsTrimmedAtItsEndsOnly)
{
    save(" \t1 2\r\n\n");
    QString content;
    EXPECT_EQ(PowerModeFile::read(&content), PowerModeFile::Read::Done);
    EXPECT_EQ(content, "1 2");
}

TEST_F(ProfileFile, TellsHowItCannotBeRead)
{
    QString content;
    EXPECT_EQ(PowerModeFile::read(&content), PowerModeFile::Read::Absent);
    replaceProfileFile(InItsPlace::Folder);
    EXPECT_EQ(PowerModeFile::read(&content), PowerModeFile::Read::NotOpened);
    replaceProfileFile(InItsPlace::ReadError);
    EXPECT_EQ(PowerModeFile::read(&content), PowerModeFile::Read::NotRead);
}

TEST_F(ProfileFile, TellsHowItCannotBeWritten)
{
    replaceProfileFile(InItsPlace::Folder);
    EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::NotCreated);
    replaceProfileFile(InItsPlace::FullDisk);
    EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::NotWritten);
}

// A disk that is full, or an end of the process between the opening and the writing.
TEST_F(ProfileFile, KeepsTheOldCharacterUntilTheNewOneIsWritten)
{
    save(savedLow);
    {
        const tarnTest::FileSizeLimit nothingMore(0);
        EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::NotWritten);
    }
    EXPECT_EQ(savedBytes(), savedLow);
    EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::Done);
    EXPECT_EQ(savedBytes(), savedBalance);
}

// More than one character would be read as no profile at all.
TEST_F(ProfileFile, ThatKeepsTheRestOfAnOlderTextIsNotWritten)
{
    const int inMemory = ::memfd_create("profile", MFD_ALLOW_SEALING);
    ASSERT_GE(inMemory, 0);
    ASSERT_EQ(::write(inMemory, "old", 3), 3);
    ASSERT_EQ(::fcntl(inMemory, F_ADD_SEALS, F_SEAL_SHRINK), 0);
    ASSERT_TRUE(QFile::link(QString("/proc/self/fd/%1").arg(inMemory), profilePath()));
    EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::NotWritten);
    EXPECT_EQ(savedBytes(), "1ld");
    ::close(inMemory);
}

TEST_F(ProfileFile, HoldsOneCharacterWhateverItHeldBefore)
{
    for (const char *before : {"", "0", "high", "1\r\n"}) {
        save(before);
        EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::Done);
        EXPECT_EQ(savedBytes(), savedBalance) << before;
    }
}

TEST_F(ProfileFile, IsWrittenEvenIfItCannotBeRead)
{
    save(savedLow);
    tarnTest::setMode(profilePath(), 0222);
    {
        const Unprivileged unprivileged;
        EXPECT_EQ(PowerModeFile::write(balanceProfile), PowerModeFile::Write::Done);
    }
    tarnTest::setMode(profilePath(), 0666);
    EXPECT_EQ(savedBytes(), savedBalance);
}
