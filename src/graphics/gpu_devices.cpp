#include "device/ec_registers.h"
#include "graphics/graphics_accessory_manager.h"
#include "platform/device_manager.h"

#include <QDebug>

namespace tarnAccessoryManager {
namespace {

using namespace tarnPlatform;

constexpr int longTextBytes = 4096;
constexpr int shortTextBytes = 256;
constexpr int instanceIdCharacters = 200;

constexpr char installedName[] = "NVIDIA GeForce RTX 4060 Ti";
constexpr char seriesName[] = "4060";
constexpr char nvidiaPciId[] = "PCI\\VEN_10DE";
constexpr char amdPciId[] = "PCI\\VEN_1002";

std::unique_ptr<DeviceList> openAdapters()
{
    return DeviceManager::system().displayAdapters(DeviceManager::Text::Ansi);
}

// 1 or 0; -1 when the adapters cannot be listed.
int isDriverInstalled()
{
    const auto adapters = openAdapters();
    if (!adapters)
        return -1;
    while (Device *adapter = adapters->next()) {
        const auto description = adapter->ansiText(DeviceProperty::Description, longTextBytes);
        if (description && description->contains(installedName))
            return 1;
    }
    return 0;
}

bool isGpuOfSeries(Device &adapter)
{
    const auto hardwareIds = adapter.ansiText(DeviceProperty::HardwareIds, longTextBytes);
    if (!hardwareIds || (!hardwareIds->contains(nvidiaPciId) && !hardwareIds->contains(amdPciId)))
        return false;
    const auto description = adapter.ansiText(DeviceProperty::Description, shortTextBytes);
    return description && description->contains(seriesName);
}

// 1 or 0; -1 when the adapters cannot be listed, -2 when there is none that can be asked.
int isGpuStarted()
{
    const auto adapters = openAdapters();
    if (!adapters)
        return -1;
    while (Device *adapter = adapters->next()) {
        if (!isGpuOfSeries(*adapter))
            continue;
        if (const auto status = adapter->status())
            return status->bits & deviceStarted ? 1 : 0;
    }
    return -2;
}

// True when the adapter needs no driver patch.
bool isAdapterHealthy(Device &adapter, const QString &id)
{
    const auto status = adapter.status();
    if (!status) {
        qDebug() << "Failed to get device status for:" << id;
        return false;
    }
    if (!(status->bits & deviceHasProblem)) {
        qDebug() << "Device" << id << "is functioning properly.";
        return true;
    }
    qDebug() << "Device" << id << "has issues, ConfigManagerErrorCode:" << status->problem;
    return status->problem != problemFailedPostStart && status->problem != problemFailedAdd;
}

bool isFirstNvidiaAdapterHealthy(DeviceList &adapters)
{
    int index = 1;
    while (Device *adapter = adapters.next()) {
        ++index; // counts from 2: log readers know the first adapter by that number
        const auto id = adapter->instanceId(instanceIdCharacters);
        if (!id) {
            qDebug() << "Failed to get device ID for index:" << index;
            continue;
        }
        qDebug() << "Checking device index:" << index << ", ID:" << *id;
        if (!id->contains(QStringLiteral("VEN_10DE"), Qt::CaseInsensitive))
            continue;
        qDebug() << "Found NVIDIA device:" << *id;
        return isAdapterHealthy(*adapter, *id);
    }
    return true;
}

enum class Switch { On, Off };

// Log texts for switching the adapters of the series.
struct SwitchWords
{
    const char *noList;
    const char *done;
    const char *failed;
};
constexpr SwitchWords switchOnWords = {
    "GraphicsActive_log: Failed to get device info set.",
    "GraphicsActive_log: Enabled 4060 series GPU at index",
    "GraphicsActive_log: Failed to enable 4060 series GPU at index",
};
constexpr SwitchWords switchOffWords = {
    "GraphicsDisengaged_log: Failed to get device info set.",
    "GraphicsDisengaged_log: Disabled 4060 series GPU at index",
    "GraphicsDisengaged_log: Failed to disable 4060 series GPU at index",
};

// An adapter of unknown status counts as one that is off.
bool isOn(Device &adapter)
{
    const auto status = adapter.status();
    return status && (status->bits & deviceStarted) != 0;
}

bool isOfSeries(Device &adapter)
{
    const auto description = adapter.ansiText(DeviceProperty::Description, shortTextBytes);
    return description && description->contains(seriesName);
}

// Every adapter of the series is handled, even if another one fails. -1 if the list could not be opened or an
// adapter refused. `onDone` is called after each that was switched.
template <typename OnDone> int switchAdapters(Switch to, const SwitchWords &words, const OnDone &onDone)
{
    const auto adapters = openAdapters();
    if (!adapters) {
        qDebug() << words.noList;
        return -1;
    }
    int result = 0;
    int index = 0;
    for (Device *adapter = adapters->next(); adapter; adapter = adapters->next(), ++index) {
        if (!isOfSeries(*adapter) || isOn(*adapter) == (to == Switch::On))
            continue;
        if (to == Switch::On ? adapter->enable() : adapter->disable()) {
            qDebug() << words.done << index;
            onDone();
        } else {
            qDebug() << words.failed << index;
            result = -1;
        }
    }
    return result;
}

} // namespace

int GraphicsAccessoryManager::getGpuDriverData()
{
    // Always 1, because the EC has already reported the box.
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: get gpu is exist or not: " << 1 << ".";
    const int installed = isDriverInstalled();
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: get gpu driver is install or not: " << installed
             << ".";
    if (installed == -1)
        return -1;
    int gpuDriverData = tarnDeviceInfos::GPU_PRESENT;
    if (installed == 1) {
        gpuDriverData |= tarnDeviceInfos::GPU_DRIVER_INSTALLED;
        const int started = isGpuStarted();
        qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: get gpu is active or not: " << started
                 << ".";
        // An adapter that cannot be found or asked counts as an error and not as an inactive GPU: otherwise
        // the EC would be told that the GPU is off while it may be on.
        if (started < 0)
            return -1;
        if (started == 1)
            gpuDriverData |= tarnDeviceInfos::GPU_STARTED;
    }
    qDebug() << "GraphicsActive_log & GraphicsDisengaged_log: gpuDriverData is " << gpuDriverData << ".";
    return gpuDriverData;
}

bool GraphicsAccessoryManager::checkNvidiaAdapterStatus()
{
    auto adapters = DeviceManager::system().displayAdapters(DeviceManager::Text::Wide);
    if (!adapters) {
        qDebug() << "Failed to get device info set for display adapters.";
        return false;
    }
    const bool healthy = isFirstNvidiaAdapterHealthy(*adapters);
    adapters.reset();
    qDebug() << "Device info list destroyed for display adapters.";
    return healthy;
}

int GraphicsAccessoryManager::enableGpu()
{
    return switchAdapters(Switch::On, switchOnWords, [] {});
}

int GraphicsAccessoryManager::disableGpu()
{
    // At once after each adapter: the monitor may ask meanwhile.
    return switchAdapters(Switch::Off, switchOffWords, [this] { gpuActive = false; });
}

} // namespace tarnAccessoryManager
