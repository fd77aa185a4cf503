#pragma once

#include "pipe/command.h"

#include <QString>
#include <QStringList>

namespace tarnPipeServer {

// Null for an unknown command. Any thread.
[[nodiscard]] const Command *findCommand(const QString &name);

[[nodiscard]] QStringList commandNames();

} // namespace tarnPipeServer
