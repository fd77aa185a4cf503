#pragma once

#include "tool_streams.h"

#include <QStringList>

namespace tarnctl {

// The whole tool: the first argument is the program's name, the result the process's exit code. A
// QCoreApplication must exist.
[[nodiscard]] int runTarnctl(const QStringList &arguments, ToolStreams streams);

} // namespace tarnctl
