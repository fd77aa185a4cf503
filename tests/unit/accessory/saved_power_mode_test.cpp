#include "profile_file_fixture.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Fault;
using tarnTest::InItsPlace;
using tarnTest::ProfileFileTest;

struct SavedProfile
{
    const char *name;
    QByteArray content;
    int profile;
};

namespace {

const SavedProfile savedProfiles[] = {
    {"High", "0", 0},
    {"Balance", "1", 1},
    {"Low", "2", 2},
    {"HighWithLineEnd", "0\n", 0},
    {"BalanceWithTabAndDosLineEnd", "\t1\r\n", 1},
    {"LowWithBlankAndLineEnd", " 2\n", 2},
    {"LowAmongBlankLines", "\n\n  2  \n\n", 2},
};

const char *const restoredWords[] = {"high", "balance", "low"};

QStringList linesOfRestored(int profile)
{
    QStringList lines {"begin to set ec powermode."};
    if (profile == 0)
        lines.prepend("Read data from configuration file successed, last ec powermode is high.");
    return lines;
}

} // namespace

class SavedPowerMode : public ProfileFileTest, public ::testing::WithParamInterface<SavedProfile>
{
protected:
    void SetUp() override { save(GetParam().content); }
    [[nodiscard]] QString text(const char *format) const
    {
        return QString(format).arg(restoredWords[GetParam().profile]);
    }
};

TEST_P(SavedPowerMode, IsRestored)
{
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), GetParam().profile);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), QList({45, 35, 15}).at(GetParam().profile));
    EXPECT_EQ(savedBytes(), QByteArray::number(GetParam().profile)); // the blanks have gone
    EXPECT_EQ(linesBeforeApplication(), linesOfRestored(GetParam().profile));
    EXPECT_EQ(linesAfterApplication(),
        QStringList({text("set ec powermode to %1 done."),
            text("Successfully wrote to the configuration file when set ec powermode to %1 successed.")}));
}

TEST_P(SavedPowerMode, StaysInTheFileWhenTheECDoesNotTakeIt)
{
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL1);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -2);
    EXPECT_EQ(manager->currentPowerMode(), -2);
    EXPECT_EQ(manager->lastRestoreResult(), -1);
    EXPECT_EQ(savedBytes(), GetParam().content);
    EXPECT_EQ(linesBeforeApplication(), linesOfRestored(GetParam().profile));
    const QStringList lines = machine.log.lines();
    EXPECT_EQ(lines.mid(lines.size() - 2),
        QStringList({text("W: set ec powermode to %1 failed."),
            text("W: Failed to set ec powermode to %1 when app begin.")}));

    machine.faults().clear();
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), GetParam().profile);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
}

TEST_P(SavedPowerMode, IsRestoredThoughItCannotBeSavedAgain)
{
    replaceDuringApplication(InItsPlace::Folder);
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), GetParam().profile);
    EXPECT_EQ(machine.log.lines().last(),
        text("W: Failed to create the configuration file but set ec powermode to %1 successed."));
}

INSTANTIATE_TEST_SUITE_P(Contents, SavedPowerMode, ::testing::ValuesIn(savedProfiles),
    [](const auto &row) { return std::string(row.param.name); });

struct GarbledProfile
{
    const char *name;
    QByteArray content;
};

namespace {

const GarbledProfile garbledProfiles[] = {
    {"Empty", ""},
    {"LineEnd", "\n"},
    {"Blanks", "  \t\r\n"},
    {"TwoDigits", "02"},
    {"NumberBeyond", "3"},
    {"NegativeNumber", "-1"},
    {"Word", "high"},
    {"BlankInside", "0 0"},
    {"Comma", "1,"},
    {"Hexadecimal", "0x2"},
    {"TwoLines", "2\n2"},
    {"NullByte", QByteArray("0\0", 2)},
    {"FullWidthDigit", "\xEF\xBC\x92"},
    {"NoUtf8", "\xFF\xFE\xFD"},
    {"Long", QByteArray(100000, '0')},
};

} // namespace

class GarbledPowerMode : public ProfileFileTest, public ::testing::WithParamInterface<GarbledProfile>
{ };

TEST_P(GarbledPowerMode, BecomesBalance)
{
    save(GetParam().content);
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), 1);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), 35);
    EXPECT_EQ(savedBytes(), "1");
    EXPECT_EQ(linesBeforeApplication(),
        QStringList({"read from configuration file successed with unexpected data."}));
    EXPECT_EQ(linesAfterApplication(),
        QStringList({"set ec powermode to balance done.",
            "Successfully wrote to the configuration file when set ec powermode to balance when app begin "
            "successed."}));
}

INSTANTIATE_TEST_SUITE_P(Contents, GarbledPowerMode, ::testing::ValuesIn(garbledProfiles),
    [](const auto &row) { return std::string(row.param.name); });

using PowerModeFields = ProfileFileTest;

TEST_F(PowerModeFields, AClientsChoiceDoesNotCountAsRestored)
{
    save("2");
    ASSERT_EQ(manager->restorePowerModeAtStart(), 0);
    ASSERT_EQ(manager->setEcPowerMode(0), 0);
    EXPECT_EQ(manager->currentPowerMode(), 2);
    EXPECT_EQ(savedBytes(), "0");
    ASSERT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), 0);
}

TEST(PowerModeManagerObject, SaysThatItWasCreatedOnce)
{
    const tarnTest::LogCapture log;
    auto *manager = tarnAccessoryManager::EcPowerModeManager::instance();
    EXPECT_EQ(tarnAccessoryManager::EcPowerModeManager::instance(), manager);
    EXPECT_EQ(log.lines(), QStringList({"EcPowerModeManager object is created."}));
}
