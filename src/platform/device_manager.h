#pragma once

#include "platform/seam.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace tarnPlatform {

// Status bits of a device node and problem codes of the configuration manager.
inline constexpr quint32 deviceStarted = 0x8;
inline constexpr quint32 deviceHasProblem = 0x400;
inline constexpr quint32 problemFailedAdd = 31;
inline constexpr quint32 problemFailedPostStart = 43;

struct DeviceStatus
{
    quint32 bits = 0;
    quint32 problem = 0; // valid only with deviceHasProblem
};

enum class DeviceProperty { Description, HardwareIds };
enum class DeviceChange { Disable, Enable };

// A device of an open list.
class Device
{
public:
    virtual ~Device() = default;

    // In the ANSI code page; empty when it cannot be read or does not fit into a buffer of this size.
    // Hardware ids are a multi-string: all of them, with NULs between.
    [[nodiscard]] virtual std::optional<QByteArray> ansiText(DeviceProperty property, int bufferBytes) = 0;
    [[nodiscard]] virtual std::optional<QString> wideDescription(int bufferBytes) = 0;
    [[nodiscard]] virtual std::optional<QString> instanceId(int bufferCharacters) = 0;
    [[nodiscard]] virtual std::optional<DeviceStatus> status() = 0;

    // Through the configuration manager.
    [[nodiscard]] virtual bool enable() = 0;
    [[nodiscard]] virtual bool disable() = 0;
    // Through the class installer, in the scope of all hardware profiles.
    [[nodiscard]] virtual bool changeByInstaller(DeviceChange change) = 0;
};

// An open list of devices, which the destructor closes.
class DeviceList
{
public:
    virtual ~DeviceList() = default;
    // The first device, and at each further call the next one; null at the end. It lives until the next call
    // and no longer than the list.
    [[nodiscard]] virtual Device *next() = 0;
};

// The devices that are present on the computer. Any thread; a list belongs to the thread that opened it.
class DeviceManager : public Seam<DeviceManager>
{
public:
    enum class Text { Ansi, Wide };

    virtual ~DeviceManager() = default;
    // Null when the list cannot be opened.
    [[nodiscard]] virtual std::unique_ptr<DeviceList> displayAdapters(Text text) = 0;
    [[nodiscard]] virtual std::unique_ptr<DeviceList> allDevices() = 0;

private:
    friend class Seam<DeviceManager>;
    static DeviceManager &ofSystem();
};

} // namespace tarnPlatform
