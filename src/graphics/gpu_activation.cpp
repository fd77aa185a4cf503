#include "device/ec_access_lock.h"
#include "device/ec_registers.h"
#include "graphics/graphics_accessory_manager.h"
#include "graphics/gui_launcher.h"
#include "graphics/peg_state_report.h"
#include "graphics/process_check.h"
#include "platform/process_end.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;

constexpr auto settleTime = 3000ms; // until the host has enumerated what has just been attached

constexpr PegStateWords reportWords = {
    "GraphicsActive_log: Success to write gpuDriverDataFirst: ",
    "GraphicsActive_log: Failed to write gpuDriverDataFirst: ",
    "GraphicsActive_log: Successed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ",
    "GraphicsActive_log: Failed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ",
};
// Does not log that the data byte was written.
constexpr PegStateWords patchReportWords = {
    nullptr, reportWords.dataFailed, reportWords.commandDone, reportWords.commandFailed};

// A window that tells the user why the GPU cannot be used, unless the client application runs and shows it
// itself.
struct Popup
{
    const char *programSwitch;
    const char *clientRuns;
    const char *clientDoesNotRun;
};
constexpr Popup devicePopup = {"--graphics-device-error",
    "Tarn.exe is running, don't shou the device error popup.",
    "Tarn.exe is not running, shou the device error popup."};
constexpr Popup driverPopup = {"--graphics-driver-error",
    "Tarn.exe is running, don't shou the driver error popup.",
    "Tarn.exe is not running, shou the driver error popup."};
constexpr Popup patchPopup = {"--graphics-patch-error",
    "Tarn.exe is running, don't shou the patch error popup.",
    "Tarn.exe is not running, shou the patch error popup."};

void show(const Popup &popup)
{
    if (isProcessRunning(QStringLiteral("Tarn.exe"))) {
        qDebug() << popup.clientRuns;
        return;
    }
    qDebug() << popup.clientDoesNotRun;
    launchGuiProgram(QString::fromLatin1(popup.programSwitch));
}

bool isTooLateToEnable()
{
    if (!tarnPlatform::isProcessEnding())
        return false;
    qWarning() << "GraphicsActive_log: The service ends, so the graphics are not activated.";
    return true;
}

} // namespace

int GraphicsAccessoryManager::graphicsActiveProcess()
{
    qDebug() << "GraphicsActive_log: Received GPU connect signal.";
    tarnPlatform::sleepFor(settleTime);
    if (isTooLateToEnable())
        return -1;
    qDebug() << "GraphicsActive_log: Start the graphics active process.";

    const int found = getGpuDriverData();
    if (found == -1) {
        qWarning() << "GraphicsActive_log: failed to get gpu driver data when graphics active process begin:"
                   << found << ".";
        return -1;
    }
    qDebug() << "GraphicsActive_log: get gpu driver data when graphics active process begin: " << found;
    if (!(found & GPU_PRESENT)) {
        qWarning() << "GraphicsActive_log: Graphics does not exist!";
        show(devicePopup);
        reportPegState(found, reportWords);
        return -1;
    }
    if (!(found & GPU_DRIVER_INSTALLED)) {
        qWarning() << "GraphicsActive_log: Gpu driver does not exist!";
        show(driverPopup);
        reportPegState(found, reportWords);
        return -1;
    }
    if (!checkNvidiaAdapterStatus()) {
        qWarning() << "GraphicsActive_log: Gpu driver status error!";
        show(patchPopup);
        reportPegState(found & ~GPU_STARTED, patchReportWords);
        return -1;
    }
    const tarnPlatform::UnfinishedStep step; // until the EC knows that the GPU is on
    if (isTooLateToEnable())
        return -1;
    if (enableGpu() != 0) {
        qWarning() << "GraphicsActive_log: active gpu failed.";
        return -1;
    }
    qDebug() << "GraphicsActive_log: active gpu successed.";
    const int enabled = getGpuDriverData();
    if (enabled == -1) {
        qWarning() << "GraphicsActive_log: failed to get gpu driver data  after active gpu driver:" << enabled
                   << ".";
        return -1;
    }
    // Reported as active although it has only just been enabled: the driver may take a while to start it, and
    // the EC waits for the bit.
    const int reported = enabled | GPU_STARTED;
    qDebug() << "GraphicsActive_log: get gpu driver data after active gpu driver: " << reported;
    return reportPegState(reported, reportWords) ? 0 : -1;
}

} // namespace tarnAccessoryManager
