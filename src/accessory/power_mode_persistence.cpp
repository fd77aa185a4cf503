#include "accessory/ec_power_mode_manager.h"

#include "accessory/power_mode_file.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {

// What the log says of saving a profile that has been applied.
struct SaveTexts
{
    const char *notCreated;
    const char *notWritten;
    const char *written;
};

// One way in which the saved profile can be missing, with its words.
struct RestoreTexts
{
    const char *failed;
    const char *applied; // null: nothing is said
    SaveTexts save;
};

namespace {

using namespace std::chrono_literals;
using tarnPlatform::sleepFor;

constexpr quint32 balanceNumber = 1;
constexpr int restoreFailed = -2;
constexpr auto firstRunPause = 10ms;
constexpr int lastRunAttempts = 5;
constexpr auto lastRunPause = 50ms;

struct ProfileSteps
{
    int (EcPowerModeManager::*apply)();
    const char *failed;
    const char *done;
    const char *restoreFailed;
    SaveTexts save;
};
// Indexed by profile number.
constexpr ProfileSteps profileSteps[] = {
    {&EcPowerModeManager::setEcPowerModeHigh, "set ec powermode to high failed.",
        "set ec powermode to high done.", "Failed to set ec powermode to high when app begin.",
        {"Failed to create the configuration file but set ec powermode to high successed.",
            "Error writing to the configuration file but set ec powermode to high successed.",
            "Successfully wrote to the configuration file when set ec powermode to high successed."}},
    {&EcPowerModeManager::setEcPowerModeBalance, "set ec powermode to balance failed.",
        "set ec powermode to balance done.", "Failed to set ec powermode to balance when app begin.",
        {"Failed to create the configuration file but set ec powermode to balance successed.",
            "Error writing to the configuration file but set ec powermode to balance successed.",
            "Successfully wrote to the configuration file when set ec powermode to balance successed."}},
    {&EcPowerModeManager::setEcPowerModeLow, "set ec powermode to low failed.",
        "set ec powermode to low done.", "Failed to set ec powermode to low when app begin.",
        {"Failed to create the configuration file but set ec powermode to low successed.",
            "Error writing to the configuration file but set ec powermode to low successed.",
            "Successfully wrote to the configuration file when set ec powermode to low successed."}},
};

constexpr SaveTexts saveWhenAppBegins {
    "Failed to create the configuration file but set ec powermode to balance when app begin successed.",
    "Error writing to the configuration file but set ec powermode to balance when app begin successed.",
    "Successfully wrote to the configuration file when set ec powermode to balance when app begin "
    "successed."};

constexpr RestoreTexts fileAbsent {"Failed to set ec powermode to balance for first when app begin.", nullptr,
    {"Failed to create the configuration file but set ec powermode to balance for first successed.",
        "Error writing to the configuration file but set ec powermode to balance for first successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance for first "
        "successed."}};
constexpr RestoreTexts fileNotOpened {
    "set ec powermode to balance failed.", "set ec powermode to balance done.", saveWhenAppBegins};
constexpr RestoreTexts fileNotRead {"Failed to set ec powermode to balance when app begin.", nullptr,
    {"Failed to create the configuration file but set ec powermode to balance when begin successed.",
        "Error writing to the configuration file but set ec powermode to balance when begin successed.",
        "Successfully wrote to the configuration file when set ec powermode to balance when begin "
        "successed."}};
constexpr RestoreTexts unexpectedContent {"set ec powermode to balance when app begin failed.",
    "set ec powermode to balance done.", saveWhenAppBegins};

bool saveProfile(quint32 profile, const SaveTexts &texts)
{
    switch (PowerModeFile::write(profile)) {
    case PowerModeFile::Write::NotCreated:
        qWarning() << texts.notCreated;
        return false;
    case PowerModeFile::Write::NotWritten:
        qWarning() << texts.notWritten;
        return false;
    case PowerModeFile::Write::Done:
        break;
    }
    qDebug() << texts.written;
    return true;
}

std::optional<quint32> savedProfile(const QString &content)
{
    for (quint32 profile = 0; profile < std::size(profileSteps); ++profile) {
        if (content == QString::number(profile))
            return profile;
    }
    return std::nullopt;
}

} // namespace

int EcPowerModeManager::setEcPowerMode(quint32 profile)
{
    qDebug() << "begin to set ec powermode.";
    if (profile >= std::size(profileSteps)) {
        qWarning() << "Invalid behavior input for setEcPowerMode.";
        return -2;
    }
    const ProfileSteps &steps = profileSteps[profile];
    if ((this->*steps.apply)() != 0) {
        qWarning() << steps.failed;
        return -1;
    }
    qDebug() << steps.done;
    saveProfile(profile, steps.save);
    return 0;
}

int EcPowerModeManager::restorePowerModeAtStart()
{
    QString content;
    switch (PowerModeFile::read(&content)) {
    case PowerModeFile::Read::Absent:
        return restoreBalance(fileAbsent);
    case PowerModeFile::Read::NotOpened:
        qWarning() << "The configuration file exists but failed to open.";
        return restoreBalance(fileNotOpened);
    case PowerModeFile::Read::NotRead:
        qWarning() << "Open the configuration file successed but failed to read data.";
        return restoreBalance(fileNotRead);
    case PowerModeFile::Read::Done:
        break;
    }
    if (const auto profile = savedProfile(content))
        return restoreSavedProfile(*profile);
    qDebug() << "read from configuration file successed with unexpected data.";
    return restoreBalance(unexpectedContent);
}

void EcPowerModeManager::powerModeFirstRun()
{
    qDebug() << "ec operation first to do nothing";
    if (setEcPowerCtrlMode(tarnDeviceInfos::PL_CTRL_MANUAL) != 0) {
        // Says so, but deliberately makes no second attempt: the client asks again at its next start.
        qWarning() << "failed to set ec powermode to manual when begin.";
        qDebug() << "retry to set ec powermode to manual for " << 1 << " times.";
        sleepFor(firstRunPause);
        return;
    }
    qDebug() << "set ec power ctrl mode to manual when begin successed.";
    switch (restorePowerModeAtStart()) {
    case 0:
        qDebug() << "set ec powermode for first when app begin to run successed.";
        break;
    case -1:
        qWarning()
            << "set ec powermode for first when app begin to run successed but fail with configuration "
               "file operation.";
        break;
    default:
        qWarning() << "set ec powermode for first when app begin to run failed.";
    }
}

void EcPowerModeManager::powerModeLastRun()
{
    qDebug() << "ec operation last to do nothing";
    qDebug() << "app will close after set ec powermode to auto mode.";
    for (int attempt = 1; attempt <= lastRunAttempts; ++attempt) {
        if (setEcPowerCtrlMode(tarnDeviceInfos::PL_CTRL_AUTO) == 0) {
            qDebug() << "set ec powermode to auto mode before app close successed.";
            qDebug() << "app is closing now.";
            return;
        }
        qWarning() << "Warning!!! Failed to set Ec Power Control Mode to Auto when app closing!!!";
        qDebug() << "retry to set Ec Power Control Mode to Auto for " << attempt << " times.";
        sleepFor(lastRunPause);
    }
}

// Without a usable file the profile is balance, and the file is made good.
int EcPowerModeManager::restoreBalance(const RestoreTexts &texts)
{
    const int result = setEcPowerModeBalance();
    lastPowerModeResult = result; // another client's restore may change it at any time
    if (result != 0) {
        powerMode = restoreFailed;
        qDebug() << texts.failed;
        return -2;
    }
    if (texts.applied)
        qDebug() << texts.applied;
    powerMode = balanceNumber;
    return saveProfile(balanceNumber, texts.save) ? 0 : -1;
}

int EcPowerModeManager::restoreSavedProfile(quint32 profile)
{
    if (profile == 0) // only the high profile has this line
        qDebug() << "Read data from configuration file successed, last ec powermode is high.";
    const int result = setEcPowerMode(profile);
    lastPowerModeResult = result;
    if (result != 0) {
        powerMode = restoreFailed;
        qWarning() << profileSteps[profile].restoreFailed;
        return -2;
    }
    powerMode = static_cast<int>(profile);
    return 0;
}

} // namespace tarnAccessoryManager
