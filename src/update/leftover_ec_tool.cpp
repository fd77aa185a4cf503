#include "update/leftover_ec_tool.h"

#include "device/ec_access_lock.h"
#include "update/flashing_tool.h"

#include <QDebug>

namespace tarnFirmwareUpdate {
namespace {

using namespace std::chrono_literals;
using tarnDeviceInfos::ecAccessMutex;

constexpr auto pauseBetweenLooks = 1s;
constexpr int looksBetweenWarnings = 60; // a minute

} // namespace

LeftoverEcTool::LeftoverEcTool()
    : awaited(FlashingTool::ofEc().isRunning() && ecAccessMutex.lock())
{
    if (!awaited)
        return;
    connect(&timer, &QTimer::timeout, this, &LeftoverEcTool::look);
    timer.start(pauseBetweenLooks);
    qWarning() << "The EC tool is running already, so the EC is left alone until it has ended.";
}

void LeftoverEcTool::look()
{
    if (!awaited)
        return;
    if (!FlashingTool::ofEc().isRunning()) {
        awaited = false;
        timer.stop();
        qDebug() << "The EC tool has ended, so the EC is free.";
        ecAccessMutex.unlock();
    } else if (++looks % looksBetweenWarnings == 0) {
        qWarning() << "The EC tool is still running, so the EC is left alone.";
    }
}

} // namespace tarnFirmwareUpdate
