#include "simulator/fault_table.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

namespace {

constexpr std::int64_t mostSkipped = 1000000;

QString rangeText(const FaultDescription &fault)
{
    switch (fault.kind) {
    case FaultValue::Number:
        return QStringLiteral("on, off or %1 to %2 (%3)")
            .arg(fault.minimum)
            .arg(fault.maximum)
            .arg(toQString(fault.unit));
    case FaultValue::Count:
        return QStringLiteral("off or %1 to %2 (%3)")
            .arg(fault.minimum)
            .arg(fault.maximum)
            .arg(toQString(fault.unit));
    case FaultValue::Register:
        return QStringLiteral("off, or a register name or address and how many accesses succeed before");
    case FaultValue::Device:
        return QStringLiteral("on (every device), off, or a device and how many calls succeed before");
    case FaultValue::None:
        break;
    }
    return QStringLiteral("on or off");
}

ExitCode complainAboutValue(ToolContext &context, const FaultDescription &fault, const QString &given)
{
    const QString what =
        given.isEmpty() ? QStringLiteral("needs a value") : QStringLiteral("does not take \"%1\"").arg(given);
    return complain(context, WrongUsage,
        QStringLiteral("the fault %1 %2; allowed: %3").arg(toQString(fault.name), what, rangeText(fault)));
}

// The register or device that a fault is to strike at.
std::optional<std::int32_t> parseTarget(
    const ToolContext &context, const FaultDescription &fault, const QString &text)
{
    if (fault.kind == FaultValue::Register)
        return parseRegister(text);
    if (text == QLatin1String("on"))
        return fault.onValue;
    return context.computer->devices().find(text.toStdString());
}

ExitCode switchOnAtTarget(
    ToolContext &context, const FaultDescription &fault, const QString &text, const QString &skipText)
{
    const auto target = parseTarget(context, fault, text);
    if (!target)
        return complainAboutValue(context, fault, text);
    const auto skip = parseNumber(skipText.toStdString());
    if (!skip || *skip < 0 || *skip > mostSkipped)
        return complainAboutValue(context, fault, text + QLatin1Char(' ') + skipText);
    context.computer->faults().switchOn(fault.fault, *target, static_cast<std::uint32_t>(*skip));
    return Done;
}

ExitCode switchOnWithNumber(ToolContext &context, const FaultDescription &fault, const QString &text)
{
    const auto number = parseNumber(text.toStdString());
    if (!number || *number < fault.minimum || *number > fault.maximum)
        return complainAboutValue(context, fault, text);
    const auto value = static_cast<std::int32_t>(*number);
    const std::uint32_t skip = fault.kind == FaultValue::Count ? static_cast<std::uint32_t>(value) : 0;
    context.computer->faults().switchOn(fault.fault, value, skip);
    return Done;
}

ExitCode switchOn(ToolContext &context, const FaultDescription &fault, const QStringList &values)
{
    const QString text = values.value(0);
    const bool plainOn = text.isEmpty() || text == QLatin1String("on");
    const bool takesTarget = fault.kind == FaultValue::Register || fault.kind == FaultValue::Device;
    const bool hasDefault = fault.kind != FaultValue::Register && fault.kind != FaultValue::Count;
    if (values.size() > 1 && !takesTarget)
        return complainAboutValue(context, fault, values.join(QLatin1Char(' ')));
    if (plainOn && hasDefault && values.size() < 2) {
        context.computer->faults().switchOn(fault.fault, fault.onValue);
        return Done;
    }
    if (takesTarget && !text.isEmpty())
        return switchOnAtTarget(context, fault, text, values.value(1, QStringLiteral("0")));
    if (plainOn || fault.kind == FaultValue::None)
        return complainAboutValue(context, fault, text);
    return switchOnWithNumber(context, fault, text);
}

} // namespace

ExitCode switchFault(ToolContext &context, const QStringList &arguments)
{
    const FaultDescription *fault = findFault(arguments.first().toStdString());
    if (fault == nullptr)
        return complainAboutName(context, QStringLiteral("fault"), arguments.first(), faultNames());
    const QStringList values = arguments.mid(1);
    if (values == QStringList {QStringLiteral("off")}) {
        context.computer->faults().switchOff(fault->fault);
        return Done;
    }
    return switchOn(context, *fault, values);
}

ExitCode showFaults(ToolContext &context, const QStringList &)
{
    const qsizetype width = columnWidth(faultNames());
    for (const FaultDescription &fault : faultTable()) {
        const QString state = faultStateText(*context.computer, fault);
        context.out << toQString(fault.name).leftJustified(width)
                    << (state.isEmpty() ? QStringLiteral("off") : state).leftJustified(8) << ' '
                    << toQString(fault.help) << " [" << rangeText(fault) << "]\n";
    }
    return Done;
}

ExitCode clearFaults(ToolContext &context, const QStringList &)
{
    context.computer->faults().clear();
    return Done;
}

} // namespace tarnSimulator
