#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "graphics/graphics_accessory_manager.h"
#include "graphics/gui_launcher.h"
#include "graphics/peg_state_report.h"
#include "pipe/outbox/notify_client.h"
#include "platform/process_end.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnPlatform::sleepFor;
using tarnPlatform::UnfinishedStep;

constexpr auto timeToReleaseGpu = 2000ms; // for the client, before the GPU is disabled
constexpr auto updatePreparation = 3000ms;
constexpr int confirmed = 1;

constexpr PegStateWords disengagedWords = {
    "GraphicsDisengaged_log: Success to write gpuDriverData: ",
    "GraphicsDisengaged_log: Failed to write gpuDriverData: ",
    "GraphicsDisengaged_log: Successed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ",
    "GraphicsDisengaged_log: Failed to write APP_CMD_PEG_STATE to XEC_APP_CMD. ",
};

void tellClient()
{
    tarnPipeServer::notifyClient(QStringLiteral("disengagedGraphics"), QString());
    sleepFor(timeToReleaseGpu);
}

// Called after each wait, with an UnfinishedStep in force, so that a GPU that is disabled is also reported.
bool isTooLateToDisable()
{
    if (!tarnPlatform::isProcessEnding())
        return false;
    qWarning() << "GraphicsDisengaged_log: The service ends, so the gpu is not disabled.";
    return true;
}

int reportState(int gpuDriverData)
{
    if (!reportPegState(gpuDriverData, disengagedWords))
        return -1;
    qDebug() << "GraphicsDisengaged_log: handle gpukeyevent to set gpu state finish.";
    return 0;
}

} // namespace

void GraphicsAccessoryManager::graphicsDisengagementProcess()
{
    qDebug() << "GraphicsDisengaged_log: Received graphics disengaged signal, begin disengagement process.";
    if (!disableProcessIdle) {
        qDebug() << "GraphicsDisengaged_log: last graphics disable process does not finished.";
        return;
    }
    if (!gpuConnectHandled) {
        qWarning() << "GraphicsDisengaged_log: graphics disable process for first doesnot finished.";
        return;
    }
    qDebug() << "GraphicsDisengaged_log: Start the graphics disengagement process.";
    disableProcessIdle = false;
    if (handleGpuKeyEvent() == 0) {
        qDebug() << "GraphicsDisengaged_log: handle gpukeyevent to set gpu state success.";
        qDebug() << "GraphicsDisengaged_log: Graphics disengagement process finished.";
    } else {
        qWarning() << "GraphicsDisengaged_log: handle gpukeyevent to set gpu state failed.";
        qWarning() << "GraphicsDisengaged_log: Graphics disengagement process failed.";
        launchGuiProgram(QStringLiteral("--graphics-disengaged-failed"));
    }
    disableProcessIdle = true;
}

int GraphicsAccessoryManager::handleGpuKeyEvent()
{
    qDebug() << "GraphicsDisengaged_log: begin to handle gpukeyevent to set gpu state.";
    quint8 eventData = 0;
    if (EcDirverControllerHal::instance()->readXdata(XEC_APP_EVENT_DATA, &eventData) != 0) {
        qWarning()
            << "GraphicsDisengaged_log: read ecAppEventData from xdata when receive gpukeyevent failed.";
        return -1;
    }
    qDebug() << "GraphicsDisengaged_log: read ecAppEventData from xdata when receive gpukeyevent successed.";
    int gpuDriverData = getGpuDriverData();
    if (gpuDriverData == -1) {
        qDebug() << "GraphicsDisengaged_log: handle gpu ec app event B failed when get gpu driver data.";
        return -1;
    }
    qDebug() << "GraphicsDisengaged_log: get gpu driver data successed: " << gpuDriverData << ".";

    if (!(eventData & APP_EVENT_DATA_DISENGAGE)) {
        qDebug() << "GraphicsDisengaged_log: do nothing to gpu.";
        return reportState(gpuDriverData);
    }
    if (launchGuiProgram(QStringLiteral("--disengaged-graphics")) != confirmed) {
        qDebug() << "GraphicsDisengaged_log: click no when second check.";
        return 0; // no report to the EC, which goes on waiting
    }
    qDebug() << "GraphicsDisengaged_log: click yes when second check.";
    tellClient();
    const UnfinishedStep step; // until the EC knows that the GPU is off
    if (isTooLateToDisable())
        return -2;
    qDebug() << "GraphicsDisengaged_log: begin to ban gpu.";
    gpuDriverData &= ~GPU_STARTED;
    if (disableGpu() != 0) {
        qWarning() << "GraphicsDisengaged_log: ban gpu failed.";
        return -2;
    }
    qDebug() << "GraphicsDisengaged_log: ban gpu successed.";
    qDebug() << "GraphicsDisengaged_log: after ban gpu, gpuDriverData is " << gpuDriverData << ".";
    return reportState(gpuDriverData);
}

void GraphicsAccessoryManager::banGpu()
{
    qDebug() << "GraphicsDisengaged_log: begin to ban gpu.";
    tellClient();
    const UnfinishedStep step; // until the result is logged
    if (isTooLateToDisable())
        return;
    if (disableGpu() == 0)
        qDebug() << "GraphicsDisengaged_log: ban gpu successed.";
    else
        qWarning() << "GraphicsDisengaged_log: ban gpu failed.";
}

void GraphicsAccessoryManager::banGpuForMcuUpdate()
{
    qDebug() << "GraphicsDisengaged_log: begin to ban gpu for mcu update.";
    sleepFor(updatePreparation);
    const UnfinishedStep step;
    if (isTooLateToDisable())
        return;
    if (disableGpu() == 0)
        qDebug() << "GraphicsDisengaged_log: ban gpu successed for mcu update.";
    else
        qWarning() << "GraphicsDisengaged_log: ban gpu failed for mcu update.";
}

} // namespace tarnAccessoryManager
