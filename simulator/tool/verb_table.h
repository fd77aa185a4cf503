#pragma once

#include "simulator/computer_control.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <filesystem>
#include <span>

namespace tarnSimulator {

enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

// What a verb works with.
struct ToolContext
{
    QTextStream &out;
    QTextStream &err;
    ComputerControl *computer; // null for verbs that need none
    std::filesystem::path stateFile;
};

enum class StateNeed { None, MustExist, IsCreated };

struct Verb
{
    const char *name;
    const char *syntax; // of the arguments
    const char *summary;
    const char *details; // lines for the verb's own help, may be empty
    StateNeed need;
    int fewestArguments;
    int mostArguments;
    ExitCode (*run)(ToolContext &context, const QStringList &arguments);
};

[[nodiscard]] std::span<const Verb> verbTable();
// Null when there is no verb of that name.
[[nodiscard]] const Verb *findVerb(const QString &name);

} // namespace tarnSimulator
