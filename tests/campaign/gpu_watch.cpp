#include "gpu_watch.h"

#include "device/ec_registers.h"

namespace tarnCampaign {

using namespace tarnDeviceInfos;

GpuWatch::GpuWatch(CampaignMachine &watched)
    : machine(watched)
{
    // A report that is taken late cannot be compared with the devices at the time when it was made.
    machine.onGpuReport = [this](std::uint8_t gpuDriverData) {
        if (!machine.takesBytesSlowly())
            judgeReport(gpuDriverData);
    };
}

QString GpuWatch::endCycle()
{
    const auto &lines = machine.log.lines();
    for (const QString &line : lines)
        judgeLine(line);
    machine.log.clear();
    // A slow EC takes what has been written in this cycle only in the next one, though it may be quick again
    // by then.
    outOfDate = machine.faults().isOn(tarnSimulator::Fault::Slow) || machine.isInputWaiting();
    return std::exchange(fault, {});
}

void GpuWatch::judgeReport(std::uint8_t gpuDriverData)
{
    std::uint8_t allowed = truth();
    // A GPU that has just been enabled is reported as active, because its driver starts only later.
    const QStringList lines = machine.log.lines();
    const QString enabled = "GraphicsActive_log: get gpu driver data after active gpu driver: ";
    const qsizetype dataLine = lines.size() - 2; // the data byte's own line comes after it
    const bool isEnabling = dataLine >= 0 && lines.at(dataLine).startsWith(enabled);
    if (isEnabling)
        allowed |= GPU_STARTED;
    if (!outOfDate && (gpuDriverData & ~allowed) != 0)
        fault = QStringLiteral("GPU state %1 was reported, but %2 is true").arg(gpuDriverData).arg(allowed);
    // Active without a driver, when its name could not be read for a second time.
    const bool isLost = isEnabling && gpuDriverData == (GPU_PRESENT | GPU_STARTED);
    constexpr int notStarted = GPU_PRESENT | GPU_DRIVER_INSTALLED;
    constexpr int active = notStarted | GPU_STARTED;
    const bool isKnown =
        gpuDriverData == GPU_PRESENT || gpuDriverData == notStarted || gpuDriverData == active;
    if (!isKnown && !isLost)
        fault = QStringLiteral("GPU state %1 was reported").arg(gpuDriverData);
}

std::uint8_t GpuWatch::truth() const
{
    std::uint8_t bits = GPU_PRESENT; // the box; the EC itself has announced it
    const auto &devices = machine.computer.devices();
    for (const std::int32_t slot : devices.presentSlots()) {
        const tarnSimulator::Device device = devices.device(slot);
        if (device.kind != tarnSimulator::DeviceKind::Display)
            continue;
        if (device.description.find("NVIDIA GeForce RTX 4060 Ti") != std::string::npos)
            bits |= GPU_DRIVER_INSTALLED;
        if (device.started && device.description.find("4060") != std::string::npos)
            bits |= GPU_STARTED;
    }
    return bits;
}

void GpuWatch::judgeLine(const QString &line)
{
    if (line.startsWith("GraphicsActive_log: Successed to active graphics"))
        broughtUp = true;
    else if (line.startsWith("GraphicsDisengaged_log: Disabled 4060 series GPU"))
        broughtUp = false;
    else if (line.contains("ignore disengaged signal") && broughtUp)
        fault = "the key is ignored although the GPU is in use";
    else if (line.endsWith("ecAppEvent is 0x11.") && !broughtUp)
        fault = "the key is obeyed although the GPU is not in use";
}

} // namespace tarnCampaign
