#pragma once

#include "diagnose/computer.h"
#include "exit_code.h"
#include "tool_streams.h"

#include <QString>

namespace tarnctl {

// "tarnctl record on|off": switches the recording of the EC's ports on or off, by the file that the service
// looks for when it starts, and says whether it has to be restarted. Usage when the word is another one, or
// when the file cannot be made or removed.
[[nodiscard]] ExitCode runRecord(const QString &word, ToolStreams &streams, Computer &computer);

} // namespace tarnctl
