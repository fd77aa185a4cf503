#include "graphics/graphics_accessory_manager.h"
#include "platform/device_manager.h"
#include "platform/process_end.h"
#include "platform/waits.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using namespace tarnPlatform;

constexpr int descriptionBytes = 512;
constexpr auto restartPause = 1000ms;

// A GPU that comes up late leaves its sound device with a problem that only a restart cures.
void restart(Device &device)
{
    qDebug() << "High Definition Audio Device has a problem, disabling and re-enabling.";
    const UnfinishedStep step; // until it is enabled again
    if (isProcessEnding()) {
        qWarning() << "The service ends, so the device is not restarted.";
        return;
    }
    if (!device.changeByInstaller(DeviceChange::Disable)) {
        qDebug() << "High Definition Audio Failed to disable device.";
        return;
    }
    sleepFor(restartPause);
    if (device.changeByInstaller(DeviceChange::Enable))
        qDebug() << "High Definition Audio Device has been reset.";
    else
        qDebug() << "High Definition Audio Failed to enable device.";
}

void examine(Device &device)
{
    const auto description = device.wideDescription(descriptionBytes);
    if (!description) {
        qDebug() << "Failed to get device name.";
        return;
    }
    if (!description->contains(QStringLiteral("High Definition Audio"), Qt::CaseInsensitive))
        return;
    qDebug() << "Found device:" << *description;
    const auto status = device.status();
    if (!status) {
        qDebug() << "Failed to get High Definition Audio device status.";
        return;
    }
    if (!(status->bits & deviceHasProblem)) {
        qDebug() << "High Definition Audio Device is working properly.";
        return;
    }
    restart(device);
}

} // namespace

bool GraphicsAccessoryManager::resetHdAudioDevice()
{
    const auto devices = DeviceManager::system().allDevices();
    if (!devices) {
        qDebug() << "Failed to get device information set.";
        return false;
    }
    while (Device *device = devices->next())
        examine(*device);
    return true;
}

} // namespace tarnAccessoryManager
