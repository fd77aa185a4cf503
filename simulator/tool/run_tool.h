#pragma once

#include <QStringList>
#include <QTextStream>

namespace tarnSimulator {

// One call of the control tool; `arguments` begin with the program name. Returns the exit code.
[[nodiscard]] int runTool(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace tarnSimulator
