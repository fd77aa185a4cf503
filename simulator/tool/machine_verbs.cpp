#include "simulator/accessory_catalog.h"
#include "simulator/machine_values.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

namespace {

constexpr std::uint8_t someUnknownCode = 9;

std::optional<Accessory> chooseAccessory(const QString &text)
{
    const std::string plain = text.toStdString();
    if (const Accessory *known = findAccessory(plain))
        return *known;
    if (plain == unknownAccessory(someUnknownCode).name)
        return unknownAccessory(someUnknownCode);
    const auto code = parseByte(plain);
    if (!code)
        return std::nullopt;
    const Accessory *known = findAccessory(*code);
    return known == nullptr ? unknownAccessory(*code) : *known;
}

ExitCode arm(ToolContext &context, AppEvent event)
{
    if (!context.computer->armEvent(event)) {
        return complain(context, Failed,
            QStringLiteral("%1 events wait already; the host takes them while a graphics box is attached")
                .arg(eventSlots));
    }
    return Done;
}

} // namespace

ExitCode attachAccessory(ToolContext &context, const QStringList &arguments)
{
    const auto accessory = chooseAccessory(arguments.first());
    if (!accessory) {
        return complainAboutName(context, QStringLiteral("accessory"), arguments.first(),
            accessoryNames() << QStringLiteral("or a code from 0 to 255"));
    }
    context.computer->attach(*accessory);
    return Done;
}

ExitCode detachAccessory(ToolContext &context, const QStringList &)
{
    context.computer->detach();
    return Done;
}

ExitCode getValue(ToolContext &context, const QStringList &arguments)
{
    const MachineValue *value = findMachineValue(arguments.first().toStdString());
    if (value == nullptr)
        return complainAboutName(context, QStringLiteral("value"), arguments.first(), valueNames());
    context.out << toQString(value->read(*context.computer)) << '\n';
    return Done;
}

ExitCode setValue(ToolContext &context, const QStringList &arguments)
{
    const QString &name = arguments.at(0);
    const QString &text = arguments.at(1);
    const MachineValue *value = findMachineValue(name.toStdString());
    if (value == nullptr)
        return complainAboutName(context, QStringLiteral("value"), name, valueNames());
    if (value->write == nullptr) {
        return complain(context, WrongUsage, QStringLiteral("%1 can only be read").arg(name));
    }
    if (!value->write(*context.computer, text.toStdString())) {
        return complain(context, WrongUsage,
            QStringLiteral("%1 cannot be \"%2\"; allowed: %3").arg(name, text, toQString(value->allowed)));
    }
    return Done;
}

ExitCode showValues(ToolContext &context, const QStringList &)
{
    const qsizetype width = columnWidth(valueNames());
    for (const MachineValue &value : machineValues()) {
        const QString now = toQString(value.read(*context.computer));
        const QString allowed =
            value.write == nullptr ? QStringLiteral("read only") : toQString(value.allowed);
        context.out << toQString(value.name).leftJustified(width) << now.leftJustified(15) << ' '
                    << toQString(value.help) << " (" << allowed << ")\n";
    }
    return Done;
}

ExitCode pressGpuKey(ToolContext &context, const QStringList &)
{
    return arm(context, ComputerControl::gpuKeyEvent);
}

ExitCode armEvent(ToolContext &context, const QStringList &arguments)
{
    const auto code = parseByte(arguments.at(0).toStdString());
    if (!code || *code == 0) {
        return complain(context, WrongUsage,
            QStringLiteral("\"%1\" is no event code; allowed: 1 to 255").arg(arguments.at(0)));
    }
    const auto data = parseByte(arguments.value(1, QStringLiteral("0")).toStdString());
    if (!data) {
        return complain(context, WrongUsage,
            QStringLiteral("\"%1\" is no event data; allowed: 0 to 255").arg(arguments.at(1)));
    }
    return arm(context, {*code, *data});
}

ExitCode resetMachine(ToolContext &context, const QStringList &)
{
    context.computer->reset();
    return Done;
}

} // namespace tarnSimulator
