#include "accessory/ec_power_mode_manager.h"

#include "accessory/power_mode_file.h"
#include "accessory/power_profiles.h"
#include "device/ec_registers.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {

// A reason for applying the default profile, with its log texts.
struct BalanceRestore
{
    const char *failed;
    bool saysDone;
    const char *savedAs; // the profile's name in the lines about the file, and what it was saved for
};

namespace {

using namespace std::chrono_literals;
using tarnPlatform::sleepFor;

constexpr int restoreFailed = -2;
constexpr auto firstRunPause = 10ms;
constexpr int lastRunAttempts = 5;
constexpr auto lastRunPause = 50ms;

constexpr BalanceRestore fileAbsent {
    "Failed to set ec powermode to balance for first when app begin.", false, "balance for first"};
constexpr BalanceRestore fileNotOpened {
    "set ec powermode to balance failed.", true, "balance when app begin"};
constexpr BalanceRestore fileNotRead {
    "Failed to set ec powermode to balance when app begin.", false, "balance when begin"};
constexpr BalanceRestore unexpectedContent {
    "set ec powermode to balance when app begin failed.", true, "balance when app begin"};

// False when the profile, which has been applied, could not be saved.
bool saveProfile(int number, const char *savedAs)
{
    switch (PowerModeFile::write(number)) {
    case PowerModeFile::Write::NotCreated:
        qWarning() << profileText(
            "Failed to create the configuration file but set ec powermode to %1 successed.", savedAs)
                          .constData();
        return false;
    case PowerModeFile::Write::NotWritten:
        qWarning() << profileText(
            "Error writing to the configuration file but set ec powermode to %1 successed.", savedAs)
                          .constData();
        return false;
    case PowerModeFile::Write::Done:
        break;
    }
    qDebug() << profileText(
        "Successfully wrote to the configuration file when set ec powermode to %1 successed.", savedAs)
                    .constData();
    return true;
}

const PowerProfile *savedProfile(const QString &content)
{
    return findProfile(
        [&content](const PowerProfile &profile) { return content == QString::number(profile.number); });
}

} // namespace

int EcPowerModeManager::setEcPowerMode(quint32 number)
{
    qDebug() << "begin to set ec powermode.";
    const PowerProfile *profile = profileOfNumber(number);
    if (!profile) {
        qWarning() << "Invalid behavior input for setEcPowerMode.";
        return -2;
    }
    if (applyProfile(*profile) != 0) {
        qWarning() << profileText("set ec powermode to %1 failed.", profile->name).constData();
        return -1;
    }
    qDebug() << profileText("set ec powermode to %1 done.", profile->name).constData();
    static_cast<void>(saveProfile(profile->number, profile->name)); // a failure is logged
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
    if (const PowerProfile *profile = savedProfile(content))
        return restoreSavedProfile(*profile);
    qDebug() << "read from configuration file successed with unexpected data.";
    return restoreBalance(unexpectedContent);
}

void EcPowerModeManager::powerModeFirstRun()
{
    qDebug() << "ec operation first to do nothing";
    if (setEcPowerCtrlMode(tarnDeviceInfos::PL_CTRL_MANUAL) != 0) {
        // Logs a second attempt but makes none, because the client asks again at its next start.
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

// Without a usable file, applies the balance profile and writes the file.
int EcPowerModeManager::restoreBalance(const BalanceRestore &reason)
{
    const int result = applyProfile(*profileOfNumber(defaultProfile));
    lastPowerModeResult = result;
    if (result != 0) { // not the member, which another restore may change at any time
        powerMode = restoreFailed;
        qDebug() << reason.failed;
        return -2;
    }
    if (reason.saysDone)
        qDebug() << "set ec powermode to balance done.";
    powerMode = defaultProfile;
    return saveProfile(defaultProfile, reason.savedAs) ? 0 : -1;
}

int EcPowerModeManager::restoreSavedProfile(const PowerProfile &profile)
{
    if (profile.number == 0) // only the high profile has this line
        qDebug() << "Read data from configuration file successed, last ec powermode is high.";
    const int result = setEcPowerMode(static_cast<quint32>(profile.number));
    lastPowerModeResult = result;
    if (result != 0) {
        powerMode = restoreFailed;
        qWarning()
            << profileText("Failed to set ec powermode to %1 when app begin.", profile.name).constData();
        return -2;
    }
    powerMode = profile.number;
    return 0;
}

} // namespace tarnAccessoryManager
