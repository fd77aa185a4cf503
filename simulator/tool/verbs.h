#pragma once

#include "simulator/tool/verb_table.h"

// The actions behind the verbs. The number of arguments has been checked against the verb table.
namespace tarnSimulator {

ExitCode showMachine(ToolContext &context, const QStringList &arguments);

ExitCode attachAccessory(ToolContext &context, const QStringList &arguments);
ExitCode detachAccessory(ToolContext &context, const QStringList &arguments);
ExitCode getValue(ToolContext &context, const QStringList &arguments);
ExitCode setValue(ToolContext &context, const QStringList &arguments);
ExitCode showValues(ToolContext &context, const QStringList &arguments);
ExitCode pressGpuKey(ToolContext &context, const QStringList &arguments);
ExitCode armEvent(ToolContext &context, const QStringList &arguments);
ExitCode resetMachine(ToolContext &context, const QStringList &arguments);

ExitCode showDevices(ToolContext &context, const QStringList &arguments);
ExitCode changeDevice(ToolContext &context, const QStringList &arguments);
ExitCode addDevice(ToolContext &context, const QStringList &arguments);
ExitCode removeDevice(ToolContext &context, const QStringList &arguments);

ExitCode switchFault(ToolContext &context, const QStringList &arguments);
ExitCode showFaults(ToolContext &context, const QStringList &arguments);
ExitCode clearFaults(ToolContext &context, const QStringList &arguments);

ExitCode peekMemory(ToolContext &context, const QStringList &arguments);
ExitCode pokeMemory(ToolContext &context, const QStringList &arguments);
ExitCode showRegisterLog(ToolContext &context, const QStringList &arguments);

ExitCode showRecording(ToolContext &context, const QStringList &arguments);
ExitCode replayRecording(ToolContext &context, const QStringList &arguments);
ExitCode compareRecording(ToolContext &context, const QStringList &arguments);

ExitCode makeFirmware(ToolContext &context, const QStringList &arguments);

ExitCode listNames(ToolContext &context, const QStringList &arguments);
ExitCode showHelp(ToolContext &context, const QStringList &arguments);

} // namespace tarnSimulator
