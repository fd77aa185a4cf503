#include "simulator/tool/tool_text.h"

#include "simulator/accessory_catalog.h"
#include "simulator/machine_values.h"
#include "simulator/register_table.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <vector>

namespace tarnSimulator {

namespace {

template <typename Rows> QStringList namesOf(const Rows &rows)
{
    QStringList names;
    for (const auto &row : rows)
        names << toQString(row.name);
    return names;
}

} // namespace

QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

ExitCode complain(ToolContext &context, ExitCode code, const QString &message)
{
    context.err << "tarnsim: " << message << '\n';
    return code;
}

ExitCode complainAboutName(
    ToolContext &context, const QString &kind, const QString &given, const QStringList &allowed)
{
    return complain(context, WrongUsage,
        QStringLiteral("there is no %1 \"%2\"; there are: %3")
            .arg(kind, given, allowed.join(QLatin1String(", "))));
}

QStringList verbNames()
{
    return namesOf(verbTable());
}

QStringList accessoryNames()
{
    return namesOf(accessoryCatalog()) << toQString(unknownAccessory(0).name);
}

QStringList valueNames()
{
    return namesOf(machineValues());
}

QStringList faultNames()
{
    return namesOf(faultTable());
}

QStringList allRegisterNames()
{
    std::vector<Register> rows(registerTable().begin(), registerTable().end());
    std::ranges::stable_sort(rows, {}, &Register::address);
    return namesOf(rows);
}

qsizetype columnWidth(const QStringList &names)
{
    constexpr qsizetype gap = 2;
    const auto longest = std::max_element(names.begin(), names.end(),
        [](const QString &left, const QString &right) { return left.size() < right.size(); });
    return longest->size() + gap;
}

std::optional<std::uint16_t> parseRegister(const QString &text)
{
    const std::string plain = text.toStdString();
    if (const auto known = registerAddress(plain))
        return known;
    const auto number = parseNumber(plain);
    if (!number || *number < 0 || *number > 0xFFFF)
        return std::nullopt;
    return static_cast<std::uint16_t>(*number);
}

QString registerText(std::uint16_t address)
{
    return toQString(addressText(address));
}

QString faultStateText(const ComputerControl &computer, const FaultDescription &fault)
{
    const FaultPanel &panel = computer.faults();
    const auto value = panel.value(fault.fault);
    if (!value)
        return {};
    const QString remaining = QString::number(panel.remaining(fault.fault));
    switch (fault.kind) {
    case FaultValue::Number:
        return QStringLiteral("%1 %2").arg(*value).arg(toQString(fault.unit));
    case FaultValue::Count:
        return QStringLiteral("after %1 more %2").arg(remaining, toQString(fault.unit));
    case FaultValue::Register: {
        const QString name = registerText(static_cast<std::uint16_t>(*value));
        return panel.remaining(fault.fault) == 0
            ? name
            : QStringLiteral("%1, after %2 more accesses").arg(name, remaining);
    }
    case FaultValue::Device: {
        const QString name = *value == everyDevice ? QStringLiteral("every device")
                                                   : toQString(computer.devices().device(*value).name);
        return panel.remaining(fault.fault) == 0
            ? name
            : QStringLiteral("%1, after %2 more calls").arg(name, remaining);
    }
    case FaultValue::None:
        break;
    }
    return QStringLiteral("on");
}

} // namespace tarnSimulator
