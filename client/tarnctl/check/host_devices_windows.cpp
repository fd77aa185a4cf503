#include "host_devices.h"

#include <windows.h>

#include <cfgmgr32.h>
#include <setupapi.h>

#include <array>

namespace tarnctl {

namespace {

// Setup classes of display adapters, and of sound, video and game controllers.
constexpr GUID displayClass = {0x4D36E968, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr GUID mediaClass = {0x4D36E96C, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

constexpr std::size_t textBytes = 1024;
constexpr std::size_t instanceIdCharacters = 200; // the longest one that Windows gives

// The buffer ends in a zero that is never written, which the registry does not guarantee. Of several strings
// the first one.
QString property(HDEVINFO list, SP_DEVINFO_DATA &device, DWORD which)
{
    std::array<wchar_t, textBytes / sizeof(wchar_t) + 1> buffer {};
    if (!SetupDiGetDeviceRegistryPropertyW(list, &device, which, nullptr,
            reinterpret_cast<BYTE *>(buffer.data()), static_cast<DWORD>(textBytes), nullptr))
        return {};
    return QString::fromWCharArray(buffer.data());
}

HostDevice deviceOf(HDEVINFO list, SP_DEVINFO_DATA &data, HostDevice::Kind kind)
{
    HostDevice device;
    device.kind = kind;
    device.description = property(list, data, SPDRP_DEVICEDESC);
    device.hardwareId = property(list, data, SPDRP_HARDWAREID);
    std::array<wchar_t, instanceIdCharacters + 1> instance {};
    if (CM_Get_Device_IDW(data.DevInst, instance.data(), static_cast<ULONG>(instanceIdCharacters), 0)
        == CR_SUCCESS)
        device.instanceId = QString::fromWCharArray(instance.data());
    ULONG bits = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&bits, &problem, data.DevInst, 0) == CR_SUCCESS) {
        device.isStarted = (bits & DN_STARTED) != 0;
        device.problem = (bits & DN_HAS_PROBLEM) != 0 ? static_cast<quint32>(problem) : 0;
    }
    return device;
}

QList<HostDevice> devicesOf(const GUID &setupClass, HostDevice::Kind kind)
{
    const HDEVINFO list = SetupDiGetClassDevsW(&setupClass, nullptr, nullptr, DIGCF_PRESENT);
    if (list == INVALID_HANDLE_VALUE)
        return {};
    QList<HostDevice> devices;
    SP_DEVINFO_DATA data = {};
    data.cbSize = sizeof data;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(list, index, &data); ++index)
        devices << deviceOf(list, data, kind);
    SetupDiDestroyDeviceInfoList(list);
    return devices;
}

} // namespace

QList<HostDevice> hostDevices()
{
    return devicesOf(displayClass, HostDevice::Kind::Display)
        + devicesOf(mediaClass, HostDevice::Kind::Audio);
}

} // namespace tarnctl
