#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "platform/process_end.h"
#include "platform/waits.h"
#include "update/firmware_updater.h"
#include "update/tool_run.h"

#include <QDebug>
#include <QProcess>

namespace tarnFirmwareUpdate {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnPlatform::milliseconds;
using tarnPlatform::sleepFor;
using tarnPlatform::steadyNow;

constexpr auto controlPause = 1000ms; // before the sequence and after each of its writes
constexpr auto handshakePause = 2000ms;
constexpr int maximumRuns = 3;

// No cycle of the monitor holds the EC for longer. After a longer wait the monitor has been paused, or held
// up, and what it knows of the accessory may be out of date; after a shorter one it counts.
constexpr auto longestCycleWait = 1000ms;

// Flasher runs in a row that reported errors. The EC lock lets only one update count at a time.
std::atomic<int> failedRuns {0};

// Write, verify, start at address 0, on the first serial port.
QStringList flasherArguments(const QString &fileName)
{
    return {QStringLiteral("-w"), fileName, QStringLiteral("-v"), QStringLiteral("-g"), QStringLiteral("0x0"),
        QStringLiteral("\\\\.\\COM1")};
}

bool isKVaneAttached()
{
    return EcDirverReader::instance()->accessoryKind() == ACCESSORY_KVANE;
}

bool reads(quint16 address, quint8 expected)
{
    quint8 value = 0;
    return EcDirverControllerHal::instance()->readXdata(address, &value) == 0 && value == expected;
}

// With the EC locked: whether the KVane that the monitor knew of before the wait for the EC is still there.
bool isKVaneStillAttached(milliseconds waitBegan)
{
    if (steadyNow() - waitBegan <= longestCycleWait)
        return true;
    return reads(MCU_LINK_STATUS, MCU_LINKED) && reads(ACCESSORY_CODE, ACCESSORY_KVANE);
}

} // namespace

int FirmwareUpdater::mcuUpdate(const QString &fileName, milliseconds waitedBefore)
{
    qDebug() << "mcuUpdate Enter |";
    std::optional<int> result;
    if (isKVaneAttached())
        result = switchAndFlash(fileName, waitedBefore);
    if (!result) {
        sleepFor(handshakePause);
        qWarning() << "MCU and base handshake failed!";
    }
    qDebug() << "mcuUpdate Leave |";
    return result.value_or(-1);
}

std::optional<int> FirmwareUpdater::switchAndFlash(const QString &fileName, milliseconds waitedBefore)
{
    const auto waitBegan = steadyNow() - waitedBefore;
    const EcAccess access;
    if (!access)
        return -1;
    if (!isKVaneStillAttached(waitBegan))
        return std::nullopt;
    int result = -1;
    startBootLoader();
    // The flasher would outlive the service, and the MCU would then stay in its boot loader.
    if (tarnPlatform::isProcessEnding())
        qWarning() << "The service ends, so the flasher is not run.";
    else
        result = mcuUpdateProcess(fileName);
    sleepFor(controlPause);
    startFirmware();
    return result;
}

int FirmwareUpdater::mcuUpdateProcess(const QString &fileName)
{
    qDebug() << "mcuUpdateProcess Enter |";
    const QStringList arguments = flasherArguments(fileName);
    qDebug() << arguments;
    QProcess process;
    const ToolResult run = runTool(process, FlashingTool::ofMcu(), arguments);
    qDebug() << "Command output:" << run.output;
    // The flasher's exit code says nothing: a run has succeeded when it has printed no error.
    const QString complaint = run.failure.isEmpty() ? QString::fromLocal8Bit(run.errors) : run.failure;
    if (complaint.isEmpty()) {
        failedRuns = 0;
        qDebug() << "mcuUpdateProcess successfully";
        qDebug() << "mcuUpdateProcess Leave |";
        return 0;
    }
    qWarning() << "mcuUpdateProcess failed. Error message: " << complaint;
    if (++failedRuns == maximumRuns) {
        failedRuns = 0;
        qWarning() << "mcuUpdateProcess failed 3 times. Sending notification...";
        return -1;
    }
    if (tarnPlatform::isProcessEnding()) {
        failedRuns = 0;
        qWarning() << "The service ends, so the flasher is not run again.";
        return -1;
    }
    qDebug() << "Retrying...";
    const int result = mcuUpdateProcess(fileName);
    if (result != 0)
        qWarning() << "mcuUpdateProcess failed again. Error message: " << complaint;
    qDebug() << "mcuUpdateProcess Leave |";
    return result;
}

int FirmwareUpdater::enterMcuUpdateMode()
{
    if (!isKVaneAttached()) {
        qDebug() << "hand shake status is failed!";
        return -1;
    }
    const auto waitBegan = steadyNow();
    const QMutexLocker locker(&modeMutex);
    EcDirverReader::instance()->setMcuUpdating(true);
    // A second enter uses the EC lock that the first one has taken.
    if (!ecHeldForMode && !takeEcForMode(waitBegan)) {
        EcDirverReader::instance()->setMcuUpdating(false);
        return -1;
    }
    ecHeldForMode = true;
    startBootLoader();
    return 0;
}

bool FirmwareUpdater::takeEcForMode(milliseconds waitBegan)
{
    if (!ecAccessMutex.lock())
        return false;
    if (!isKVaneStillAttached(waitBegan))
        qDebug() << "hand shake status is failed!";
    else if (!isToolLeftRunning())
        return true;
    ecAccessMutex.unlock();
    return false;
}

int FirmwareUpdater::leaveMcuUpdateMode()
{
    const QMutexLocker locker(&modeMutex);
    if (!ecHeldForMode)
        return -1;
    startFirmware();
    ecHeldForMode = false;
    ecAccessMutex.unlock();
    EcDirverReader::instance()->setMcuUpdating(false);
    return 0;
}

void FirmwareUpdater::readControl()
{
    quint8 value = control;
    if (EcDirverControllerHal::instance()->readXdata(EC_MCU_UPDATE_CTRL, &value) == 0)
        control = value;
}

// The results of single writes are ignored, because the sequence is the same in any case, and the flasher
// finds out whether the boot loader answers.
void FirmwareUpdater::changeControl(quint8 bits, bool set)
{
    const quint8 before = control;
    control = static_cast<quint8>(set ? before | bits : before & ~bits);
    EcDirverControllerHal::instance()->writeXdata(EC_MCU_UPDATE_CTRL, control);
    sleepFor(controlPause);
}

void FirmwareUpdater::startBootLoader()
{
    sleepFor(controlPause);
    readControl();
    changeControl(MCU_UPDATE_ON, true);
    changeControl(MCU_BOOT_LOADER_SELECT, true);
    changeControl(MCU_RESET_PULSE, true);
    changeControl(MCU_RESET_PULSE, false);
}

void FirmwareUpdater::startFirmware()
{
    changeControl(MCU_BOOT_LOADER_SELECT, false);
    changeControl(MCU_RESET_PULSE, true);
    changeControl(MCU_RESET_PULSE, false);
    changeControl(MCU_UPDATE_ON, false);
}

} // namespace tarnFirmwareUpdate
