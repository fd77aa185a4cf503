#include "simulator/register_values.h"

#include "device/ec_registers.h"
#include "simulator/register_table.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

std::string_view allowedFor(const RegisterValue &value)
{
    switch (value.setting) {
    case ValueSetting::Byte:
        return aByte;
    case ValueSetting::Switch:
        return aSwitch;
    case ValueSetting::Nothing:
        break;
    }
    return {};
}

std::optional<std::uint8_t> parseSetting(const RegisterValue &value, std::string_view text)
{
    if (value.setting == ValueSetting::Switch && (text == "on" || text == "off"))
        return text == "on" ? value.onValue : std::uint8_t {0};
    return parseByte(text);
}

bool writeRegister(ComputerControl &computer, const Register &row, std::string_view text)
{
    const auto setting = parseSetting(row.value, text);
    if (!setting)
        return false;
    // The limits in force follow from this one; nothing follows from the others.
    if (row.address == EC_POWERMODE_PL_CTRL)
        computer.setPowerControl(*setting);
    else
        computer.poke(row.address, *setting);
    return true;
}

MachineValue valueOf(const Register &row)
{
    MachineValue value {row.value.name, row.value.group, allowedFor(row.value), row.value.help, {}, {}};
    value.read = [&row](const ComputerControl &computer) {
        return std::to_string(computer.peek(row.address));
    };
    if (row.value.setting == ValueSetting::Nothing)
        return value;
    value.write = [&row](ComputerControl &computer, std::string_view text) {
        return writeRegister(computer, row, text);
    };
    return value;
}

} // namespace

std::vector<MachineValue> registerValues()
{
    std::vector<MachineValue> values;
    for (const Register &row : registerTable()) {
        if (!row.value.name.empty())
            values.push_back(valueOf(row));
    }
    return values;
}

} // namespace tarnSimulator
