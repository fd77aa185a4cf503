#pragma once

#include <QString>
#include <QStringList>

#include <filesystem>

namespace tarnSimulator {

struct StateChoice
{
    std::filesystem::path file; // when none was found, the one that would be made
    QStringList places; // all that were considered
};

// Which state file the tool works on. `named` is what the command line says, empty if nothing.
[[nodiscard]] StateChoice chooseStateFile(const QString &named);
// The message to the user when that file is not there.
[[nodiscard]] QString missingStateText(const StateChoice &choice);

} // namespace tarnSimulator
