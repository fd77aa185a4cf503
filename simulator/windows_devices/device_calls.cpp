// The device functions of Windows on the devices of the simulated computer, for a Windows program that runs
// where these functions do nothing useful (under Wine). Built as setupapi.dll and cfgmgr32.dll beside the
// program.
#define _SETUPAPI_ // this library defines what the headers declare
#define _CFGMGR32_

#include "simulator/device_tree.h"
#include "simulator/fault_panel.h"
#include "simulator/windows_devices/machine_of_host.h"

#include <windows.h>

#include <algorithm>
#include <cfgmgr32.h>
#include <cstring>
#include <setupapi.h>
#include <string>
#include <vector>

namespace {

using namespace tarnSimulator;

constexpr GUID displayClass = {0x4D36E968, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

// The only buffer sizes that are accepted: bytes for a text, and characters for an instance id.
constexpr DWORD longTextBytes = 4096;
constexpr DWORD shortTextBytes = 256;
constexpr DWORD wideTextBytes = 512;
constexpr ULONG instanceIdCharacters = 200;

struct OpenList
{
    std::vector<std::int32_t> slots;
    SP_PROPCHANGE_PARAMS change = {};
};

OpenList *listOf(HDEVINFO handle)
{
    return static_cast<OpenList *>(handle);
}

// Instance handles are slots counted from 1: 0 is the root of the real tree.
std::int32_t slotOf(DEVINST instance)
{
    return static_cast<std::int32_t>(instance) - 1;
}

bool refuses(Fault fault, DEVINST instance)
{
    return FaultPanel(*machineOfHost()).refusesDevice(fault, slotOf(instance));
}

Device deviceOf(DEVINST instance)
{
    return DeviceTree(*machineOfHost()).device(slotOf(instance));
}

// Refuses a call with an enumerator or a window: the service passes neither.
HDEVINFO openList(const GUID *setupClass, const void *enumerator, HWND window, DWORD flags)
{
    MachineState *machine = machineOfHost();
    const bool onlyDisplay = setupClass != nullptr && IsEqualGUID(*setupClass, displayClass);
    const bool everything = setupClass == nullptr;
    const bool understood = (onlyDisplay && flags == DIGCF_PRESENT)
        || (everything && flags == (DIGCF_PRESENT | DIGCF_ALLCLASSES));
    if (machine == nullptr || !understood || enumerator != nullptr || window != nullptr
        || FaultPanel(*machine).refusesList()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    DeviceTree tree(*machine);
    auto *list = new OpenList {tree.presentSlots(), {}};
    if (onlyDisplay) {
        std::erase_if(list->slots,
            [&tree](std::int32_t slot) { return tree.device(slot).kind != DeviceKind::Display; });
    }
    tree.counters().listsOpened.fetch_add(1);
    return list;
}

// The text of a property with all its final zeros; empty when it cannot be read.
std::string propertyText(const SP_DEVINFO_DATA &data, DWORD property)
{
    const bool isDescription = property == SPDRP_DEVICEDESC;
    if (refuses(isDescription ? Fault::FailDeviceDescription : Fault::FailDeviceHardwareId, data.DevInst))
        return {};
    const Device device = deviceOf(data.DevInst);
    std::string text = isDescription ? device.description : device.hardwareId;
    text.push_back('\0');
    if (!isDescription) {
        text.push_back('\0'); // ends the multi-string
    }
    return text;
}

std::wstring wideText(const std::string &text)
{
    const int size = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

BOOL giveProperty(const void *text, std::size_t bytes, BYTE *buffer, DWORD size, DWORD *needed)
{
    if (needed != nullptr)
        *needed = static_cast<DWORD>(bytes);
    if (bytes == 0 || bytes > size) {
        SetLastError(bytes == 0 ? ERROR_INVALID_DATA : ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(buffer, text, bytes);
    return TRUE;
}

} // namespace

extern "C" {

HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID *setupClass, PCSTR enumerator, HWND window, DWORD flags)
{
    return openList(setupClass, enumerator, window, flags);
}

HDEVINFO WINAPI SetupDiGetClassDevsW(const GUID *setupClass, PCWSTR enumerator, HWND window, DWORD flags)
{
    return openList(setupClass, enumerator, window, flags);
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO list)
{
    delete listOf(list);
    machineOfHost()->devices.listsClosed.fetch_add(1);
    return TRUE;
}

BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO list, DWORD index, PSP_DEVINFO_DATA data)
{
    if (data->cbSize != sizeof *data || index >= listOf(list)->slots.size()) {
        SetLastError(data->cbSize != sizeof *data ? ERROR_INVALID_USER_BUFFER : ERROR_NO_MORE_ITEMS);
        return FALSE;
    }
    data->DevInst = static_cast<DEVINST>(listOf(list)->slots[index]) + 1;
    return TRUE;
}

BOOL WINAPI SetupDiGetDeviceRegistryPropertyA(
    HDEVINFO, PSP_DEVINFO_DATA data, DWORD property, PDWORD, PBYTE buffer, DWORD size, PDWORD needed)
{
    const bool isDescription = property == SPDRP_DEVICEDESC;
    const bool isHardwareId = property == SPDRP_HARDWAREID;
    if (!(size == longTextBytes && (isDescription || isHardwareId))
        && !(size == shortTextBytes && isDescription)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string text = propertyText(*data, property);
    return giveProperty(text.data(), text.size(), buffer, size, needed);
}

BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(
    HDEVINFO, PSP_DEVINFO_DATA data, DWORD property, PDWORD, PBYTE buffer, DWORD size, PDWORD needed)
{
    if (size != wideTextBytes || property != SPDRP_DEVICEDESC) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string text = propertyText(*data, property);
    const std::wstring wide = wideText(text);
    return giveProperty(wide.data(), wide.size() * sizeof(wchar_t), buffer, size, needed);
}

BOOL WINAPI SetupDiSetClassInstallParamsW(
    HDEVINFO list, PSP_DEVINFO_DATA, PSP_CLASSINSTALL_HEADER header, DWORD size)
{
    if (header->cbSize != sizeof *header || header->InstallFunction != DIF_PROPERTYCHANGE
        || size != sizeof(SP_PROPCHANGE_PARAMS)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::memcpy(&listOf(list)->change, header, size);
    return TRUE;
}

BOOL WINAPI SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO list, PSP_DEVINFO_DATA data)
{
    const SP_PROPCHANGE_PARAMS &change = listOf(list)->change;
    // The other changes (start, stop, new properties) do not enable or disable a device.
    const bool isSwitch = change.StateChange == DICS_ENABLE || change.StateChange == DICS_DISABLE;
    if (function != DIF_PROPERTYCHANGE || !isSwitch || change.Scope != DICS_FLAG_GLOBAL
        || change.HwProfile != 0 || refuses(Fault::FailDeviceInstaller, data->DevInst)) {
        SetLastError(ERROR_DI_DO_DEFAULT);
        return FALSE;
    }
    DeviceTree(*machineOfHost()).restartByInstaller(slotOf(data->DevInst), change.StateChange == DICS_ENABLE);
    return TRUE;
}

CONFIGRET WINAPI CM_Get_Device_IDW(DEVINST instance, PWSTR buffer, ULONG length, ULONG flags)
{
    if (length != instanceIdCharacters || flags != 0)
        return CR_INVALID_FLAG;
    const std::wstring id = wideText(deviceOf(instance).instanceId);
    if (refuses(Fault::FailDeviceId, instance))
        return CR_FAILURE;
    if (id.size() >= length)
        return CR_BUFFER_SMALL;
    std::copy(id.begin(), id.end(), buffer);
    buffer[id.size()] = L'\0';
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Get_DevNode_Status(PULONG status, PULONG problem, DEVINST instance, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    if (refuses(Fault::FailDeviceStatus, instance))
        return CR_NO_SUCH_DEVNODE;
    const Device device = deviceOf(instance);
    *status = (device.started ? DN_STARTED : 0) | (device.problem == 0 ? 0 : DN_HAS_PROBLEM);
    *problem = device.problem;
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Enable_DevNode(DEVINST instance, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    if (refuses(Fault::FailDeviceEnable, instance))
        return CR_ACCESS_DENIED;
    DeviceTree(*machineOfHost()).enable(slotOf(instance));
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Disable_DevNode(DEVINST instance, ULONG flags)
{
    if (flags != 0)
        return CR_INVALID_FLAG;
    if (refuses(Fault::FailDeviceDisable, instance))
        return CR_NOT_DISABLEABLE;
    DeviceTree(*machineOfHost()).disable(slotOf(instance));
    return CR_SUCCESS;
}

} // extern "C"
