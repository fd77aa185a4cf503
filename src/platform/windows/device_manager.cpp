#include "platform/device_manager.h"

#include <windows.h>

#include <cfgmgr32.h>
#include <setupapi.h>

#include <vector>

namespace tarnPlatform {
namespace {

// Setup class of display adapters.
constexpr GUID displayClass = {0x4D36E968, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

static_assert(DN_STARTED == deviceStarted && DN_HAS_PROBLEM == deviceHasProblem);
static_assert(CM_PROB_FAILED_ADD == problemFailedAdd && CM_PROB_FAILED_POST_START == problemFailedPostStart);

DWORD codeOf(DeviceProperty property)
{
    return property == DeviceProperty::Description ? SPDRP_DEVICEDESC : SPDRP_HARDWAREID;
}

class SetupDevice final : public Device
{
public:
    SetupDevice(HDEVINFO openList, const SP_DEVINFO_DATA &data)
        : list(openList)
        , device(data)
    { }

    std::optional<QByteArray> ansiText(DeviceProperty property, int bufferBytes) override
    {
        // With space for the final NULs of a string and a multi-string, which the registry does not
        // guarantee.
        QByteArray buffer(bufferBytes + 2, '\0');
        DWORD used = 0;
        if (!SetupDiGetDeviceRegistryPropertyA(list, &device, codeOf(property), nullptr,
                reinterpret_cast<BYTE *>(buffer.data()), static_cast<DWORD>(bufferBytes), &used))
            return std::nullopt;
        if (property == DeviceProperty::Description)
            return QByteArray(buffer.constData());
        buffer.truncate(static_cast<qsizetype>(used));
        return buffer;
    }

    std::optional<QString> wideDescription(int bufferBytes) override
    {
        std::vector<wchar_t> buffer(static_cast<std::size_t>(bufferBytes) / sizeof(wchar_t) + 1, L'\0');
        if (!SetupDiGetDeviceRegistryPropertyW(list, &device, SPDRP_DEVICEDESC, nullptr,
                reinterpret_cast<BYTE *>(buffer.data()), static_cast<DWORD>(bufferBytes), nullptr))
            return std::nullopt;
        return QString::fromWCharArray(buffer.data());
    }

    std::optional<QString> instanceId(int bufferCharacters) override
    {
        std::vector<wchar_t> buffer(static_cast<std::size_t>(bufferCharacters) + 1, L'\0');
        if (CM_Get_Device_IDW(device.DevInst, buffer.data(), static_cast<ULONG>(bufferCharacters), 0)
            != CR_SUCCESS)
            return std::nullopt;
        return QString::fromWCharArray(buffer.data());
    }

    std::optional<DeviceStatus> status() override
    {
        ULONG bits = 0;
        ULONG problem = 0;
        if (CM_Get_DevNode_Status(&bits, &problem, device.DevInst, 0) != CR_SUCCESS)
            return std::nullopt;
        return DeviceStatus {bits, problem};
    }

    bool enable() override { return CM_Enable_DevNode(device.DevInst, 0) == CR_SUCCESS; }
    bool disable() override { return CM_Disable_DevNode(device.DevInst, 0) == CR_SUCCESS; }

    bool changeByInstaller(DeviceChange change) override
    {
        SP_PROPCHANGE_PARAMS parameters = {};
        parameters.ClassInstallHeader.cbSize = sizeof(SP_CLASSINSTALL_HEADER);
        parameters.ClassInstallHeader.InstallFunction = DIF_PROPERTYCHANGE;
        parameters.StateChange = change == DeviceChange::Disable ? DICS_DISABLE : DICS_ENABLE;
        parameters.Scope = DICS_FLAG_GLOBAL;
        parameters.HwProfile = 0;
        return SetupDiSetClassInstallParamsW(list, &device, &parameters.ClassInstallHeader, sizeof parameters)
            && SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, list, &device);
    }

private:
    const HDEVINFO list;
    SP_DEVINFO_DATA device;
};

class SetupList final : public DeviceList
{
public:
    explicit SetupList(HDEVINFO opened)
        : list(opened)
    { }
    ~SetupList() override { SetupDiDestroyDeviceInfoList(list); }
    SetupList(const SetupList &) = delete;
    SetupList &operator=(const SetupList &) = delete;

    Device *next() override
    {
        SP_DEVINFO_DATA data = {};
        data.cbSize = sizeof data;
        if (!SetupDiEnumDeviceInfo(list, index++, &data))
            return nullptr;
        current = std::make_unique<SetupDevice>(list, data);
        return current.get();
    }

private:
    const HDEVINFO list;
    DWORD index = 0;
    std::unique_ptr<SetupDevice> current;
};

std::unique_ptr<DeviceList> wrap(HDEVINFO list)
{
    if (list == INVALID_HANDLE_VALUE)
        return nullptr;
    return std::make_unique<SetupList>(list);
}

class WindowsDevices final : public DeviceManager
{
public:
    std::unique_ptr<DeviceList> displayAdapters(Text text) override
    {
        return wrap(text == Text::Ansi
                ? SetupDiGetClassDevsA(&displayClass, nullptr, nullptr, DIGCF_PRESENT)
                : SetupDiGetClassDevsW(&displayClass, nullptr, nullptr, DIGCF_PRESENT));
    }

    std::unique_ptr<DeviceList> allDevices() override
    {
        return wrap(SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES));
    }
};

} // namespace

DeviceManager &DeviceManager::ofSystem()
{
    static WindowsDevices devices;
    return devices;
}

} // namespace tarnPlatform
