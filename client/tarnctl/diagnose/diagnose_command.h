#pragma once

#include "client/tarnctl/exit_code.h"
#include "client/tarnctl/tool_options.h"
#include "client/tarnctl/tool_streams.h"
#include "computer.h"

namespace tarnctl {

// "tarnctl diagnose": prints the table, and writes a report if one is asked for. It opens a connection to the
// service only with --connect. The exit code is ServiceFailed when something is bad, and Usage when the
// report could not be written.
[[nodiscard]] ExitCode runDiagnosis(const ToolOptions &options, ToolStreams &streams, Computer &computer);

} // namespace tarnctl
