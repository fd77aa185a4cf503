#pragma once

#include "simulator/computer_control.h"
#include "simulator/fault_table.h"
#include "simulator/tool/verb_table.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <string_view>

namespace tarnSimulator {

[[nodiscard]] QString toQString(std::string_view text);

// One sentence on the error stream.
ExitCode complain(ToolContext &context, ExitCode code, const QString &message);
// Says that an argument is not one of a set of names, and which names there are.
ExitCode complainAboutName(
    ToolContext &context, const QString &kind, const QString &given, const QStringList &allowed);

// "started", or "stopped (problem 22)".
[[nodiscard]] QString deviceConditionText(const Device &device);

[[nodiscard]] QStringList verbNames();
[[nodiscard]] QStringList accessoryNames();
[[nodiscard]] QStringList valueNames();
[[nodiscard]] QStringList faultNames();
[[nodiscard]] QStringList allRegisterNames();

// Room for the longest of them and a gap.
[[nodiscard]] qsizetype columnWidth(const QStringList &names);

// A name of the register map or an address.
[[nodiscard]] std::optional<std::uint16_t> parseRegister(const QString &text);
// "0x04A8 EC_POWERMODE_PL1", or the address alone.
[[nodiscard]] QString registerText(std::uint16_t address);
// "on", "20 ms", "0x04A8 EC_POWERMODE_PL1, after 2 more accesses", "gpu"; empty while the fault is off.
[[nodiscard]] QString faultStateText(const ComputerControl &computer, const FaultDescription &fault);

} // namespace tarnSimulator
