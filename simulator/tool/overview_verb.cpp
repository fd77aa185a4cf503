#include "device/ec_registers.h"
#include "simulator/accessory_catalog.h"
#include "simulator/fault_table.h"
#include "simulator/machine_values.h"
#include "simulator/replay/replay_control.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

using namespace tarnDeviceInfos;

namespace {

constexpr int labelWidth = 20;

struct GroupLine
{
    ValueGroup group;
    const char *label;
};

constexpr GroupLine groupLines[] = {
    {ValueGroup::HostBattery, "Host battery"},
    {ValueGroup::Kvane, "KVane"},
    {ValueGroup::Lights, "Lights"},
    {ValueGroup::Gpu, "GPU"},
    {ValueGroup::Desktop, "Desktop"},
    {ValueGroup::Power, "Power"},
    {ValueGroup::Limits, "Limits"},
    {ValueGroup::McuUpdate, "MCU update"},
    {ValueGroup::Timing, "Timing"},
};

void printLine(QTextStream &out, const QString &label, const QString &text)
{
    out << label.leftJustified(labelWidth) << text << '\n';
}

QString accessoryText(const ComputerControl &computer)
{
    if (!computer.isAttached())
        return QStringLiteral("none (link status %1)").arg(computer.peek(MCU_LINK_STATUS));
    const std::uint8_t code = computer.peek(ACCESSORY_CODE);
    const Accessory *known = findAccessory(code);
    const std::string_view name = known == nullptr ? unknownAccessory(code).name : known->name;
    return QStringLiteral("%1 (code %2), hardware version %3, MCU version %4.%5%6")
        .arg(toQString(name))
        .arg(code)
        .arg(computer.peek(HARDWARE_VERSION))
        .arg(computer.peek(MCU_VERSION_MAJOR))
        .arg(computer.peek(MCU_VERSION_MINOR))
        .arg(computer.peek(MCU_VERSION_PATCH));
}

QString groupText(const ComputerControl &computer, ValueGroup group)
{
    QStringList values;
    for (const MachineValue &value : machineValues()) {
        if (value.group == group)
            values << QStringLiteral("%1 %2").arg(toQString(value.name), toQString(value.read(computer)));
    }
    return values.join(QLatin1String(", "));
}

QString eventsText(const ComputerControl &computer)
{
    QStringList events;
    for (const AppEvent &event : computer.armedEvents())
        events << toQString(hexText(event.code, 2) + " data " + hexText(event.data, 2));
    return events.isEmpty() ? QStringLiteral("none") : events.join(QLatin1String(", "));
}

QString devicesText(const ComputerControl &computer)
{
    QStringList devices;
    for (const std::int32_t slot : computer.devices().presentSlots()) {
        const Device device = computer.devices().device(slot);
        devices << toQString(device.name) + QLatin1Char(' ') + deviceConditionText(device);
    }
    return devices.isEmpty() ? QStringLiteral("none") : devices.join(QLatin1String(", "));
}

QString faultsText(const ComputerControl &computer)
{
    QStringList faults;
    for (const FaultDescription &fault : faultTable()) {
        if (const QString state = faultStateText(computer, fault); !state.isEmpty())
            faults << QStringLiteral("%1: %2").arg(toQString(fault.name), state);
    }
    return faults.isEmpty() ? QStringLiteral("none") : faults.join(QLatin1String("; "));
}

QString countersText(const CounterState &counters)
{
    return QStringLiteral(
        "%1 reads, %2 writes, %3 refused, %4 of %5 commands aborted, %6 bytes written while IBF was set, "
        "library loaded %7 times")
        .arg(counters.reads.load())
        .arg(counters.writes.load())
        .arg(counters.refusedAccesses.load())
        .arg(counters.abortedCommands.load())
        .arg(counters.commands.load())
        .arg(counters.writtenWhileFull.load())
        .arg(counters.libraryLoads.load());
}

QString replayText(const Replay &replay, const QString &left)
{
    const bool isLoose = replay.mode == ReplayMode::Loose;
    QString text = QStringLiteral("%1: %2 of %3 %4 accesses, %5 of %6 steps, ")
                       .arg(toQString(printable(replay.file)))
                       .arg(replay.consumed)
                       .arg(replay.total)
                       .arg(isLoose ? QStringLiteral("register") : QStringLiteral("port"))
                       .arg(replay.steps)
                       .arg(replay.stepsTotal);
    if (replay.isComplete())
        return text + QStringLiteral("complete; %1 accesses came after its end").arg(replay.after);
    if (replay.difference.empty())
        return text + QStringLiteral("not complete: ") + left;
    return text + QStringLiteral("different at ") + toQString(replay.difference);
}

} // namespace

// The exit code is that of a replay, if there is one.
ExitCode showMachine(ToolContext &context, const QStringList &)
{
    const ComputerControl &computer = *context.computer;
    printLine(
        context.out, QStringLiteral("State file"), QString::fromStdU16String(context.stateFile.u16string()));
    printLine(context.out, QStringLiteral("Accessory"), accessoryText(computer));
    for (const GroupLine &line : groupLines)
        printLine(context.out, QString::fromLatin1(line.label), groupText(computer, line.group));
    printLine(context.out, QStringLiteral("Devices"), devicesText(computer));
    printLine(context.out, QStringLiteral("Armed events"), eventsText(computer));
    printLine(context.out, QStringLiteral("Faults"), faultsText(computer));
    printLine(context.out, QStringLiteral("Traffic"), countersText(computer.counters()));
    const Replay replay = replayOf(computer.state());
    if (replay.mode == ReplayMode::Off)
        return Done;
    printLine(context.out, QStringLiteral("Replay"),
        replayText(replay, toQString(leftOfReplay(computer.state(), context.stateFile))));
    return replay.isComplete() ? Done : Failed;
}

} // namespace tarnSimulator
