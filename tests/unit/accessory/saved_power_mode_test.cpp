#include "profile_file_fixture.h"

using namespace tarnDeviceInfos;
using tarnAccessoryManager::PowerProfile;
using tarnAccessoryManager::powerProfiles;
using tarnSimulator::Fault;
using tarnTest::balanceProfile;
using tarnTest::highProfile;
using tarnTest::InItsPlace;
using tarnTest::lowProfile;
using tarnTest::ProfileFileTest;
using tarnTest::restoreFailed;
using tarnTest::savedBalance;
using tarnTest::savedHigh;
using tarnTest::savedLow;
using tarnTest::usualPl1;

// What may stand before and after the character of a profile.
struct SavedForm
{
    const char *name;
    const char *format;
};

namespace {

const SavedForm savedForms[] = {
    {"", "%1"},
    {"WithLineEnd", "%1\n"},
    {"WithTabAndDosLineEnd", "\t%1\r\n"},
    {"WithBlankAndLineEnd", " %1\n"},
    {"AmongBlankLines", "\n\n  %1  \n\n"},
};

QStringList linesOfRestored(const PowerProfile &profile)
{
    QStringList lines {"begin to set ec powermode."};
    if (profile.number == highProfile)
        lines.prepend("Read data from configuration file successed, last ec powermode is high.");
    return lines;
}

} // namespace

class SavedPowerMode : public ProfileFileTest,
                       public ::testing::WithParamInterface<std::tuple<PowerProfile, SavedForm>>
{
protected:
    void SetUp() override { save(content); }
    [[nodiscard]] QString text(const char *format) const { return QString(format).arg(profile.name); }

    const PowerProfile &profile = std::get<PowerProfile>(GetParam());
    const QByteArray ownBytes = QByteArray::number(profile.number);
    const QByteArray content = QByteArray(std::get<SavedForm>(GetParam()).format).replace("%1", ownBytes);
};

TEST_P(SavedPowerMode, IsRestored)
{
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), profile.number);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), usualPl1(profile.number));
    EXPECT_EQ(savedBytes(), ownBytes); // the blanks have gone
    EXPECT_EQ(linesBeforeApplication(), linesOfRestored(profile));
    EXPECT_EQ(linesAfterApplication(),
        QStringList({text("set ec powermode to %1 done."),
            text("Successfully wrote to the configuration file when set ec powermode to %1 successed.")}));
}

TEST_P(SavedPowerMode, StaysInTheFileWhenTheECDoesNotTakeIt)
{
    machine.faults().switchOn(Fault::FailWrite, EC_POWERMODE_PL1);
    EXPECT_EQ(manager->restorePowerModeAtStart(), -2);
    EXPECT_EQ(manager->currentPowerMode(), restoreFailed);
    EXPECT_EQ(manager->lastRestoreResult(), -1);
    EXPECT_EQ(savedBytes(), content);
    EXPECT_EQ(linesBeforeApplication(), linesOfRestored(profile));
    const QStringList lines = machine.log.lines();
    EXPECT_EQ(lines.mid(lines.size() - 2),
        QStringList({text("W: set ec powermode to %1 failed."),
            text("W: Failed to set ec powermode to %1 when app begin.")}));

    machine.faults().clear();
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), profile.number);
    EXPECT_EQ(manager->lastRestoreResult(), 0);
}

TEST_P(SavedPowerMode, IsRestoredThoughItCannotBeSavedAgain)
{
    replaceDuringApplication(InItsPlace::Folder);
    EXPECT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), profile.number);
    EXPECT_EQ(machine.log.lines().last(),
        text("W: Failed to create the configuration file but set ec powermode to %1 successed."));
}

INSTANTIATE_TEST_SUITE_P(Contents, SavedPowerMode,
    ::testing::Combine(::testing::ValuesIn(powerProfiles), ::testing::ValuesIn(savedForms)),
    [](const auto &row) {
        return std::get<PowerProfile>(row.param).name + std::string(std::get<SavedForm>(row.param).name);
    });

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
    EXPECT_EQ(manager->currentPowerMode(), balanceProfile);
    EXPECT_EQ(reg(EC_POWERMODE_PL1), usualPl1(balanceProfile));
    EXPECT_EQ(savedBytes(), savedBalance);
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
    save(savedLow);
    ASSERT_EQ(manager->restorePowerModeAtStart(), 0);
    ASSERT_EQ(manager->setEcPowerMode(highProfile), 0);
    EXPECT_EQ(manager->currentPowerMode(), lowProfile);
    EXPECT_EQ(savedBytes(), savedHigh);
    ASSERT_EQ(manager->restorePowerModeAtStart(), 0);
    EXPECT_EQ(manager->currentPowerMode(), highProfile);
}

TEST(PowerModeManagerObject, SaysThatItWasCreatedOnce)
{
    const tarnTest::LogCapture log;
    auto *manager = tarnAccessoryManager::EcPowerModeManager::instance();
    EXPECT_EQ(tarnAccessoryManager::EcPowerModeManager::instance(), manager);
    EXPECT_EQ(log.lines(), QStringList({"EcPowerModeManager object is created."}));
}
