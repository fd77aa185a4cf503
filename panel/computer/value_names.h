#pragma once

#include "simulator/machine_values.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace tarnPanel {

// What sort of control a value needs, told from what may be set.
enum class ValueKind { ReadOnly, Level, Switch, Choice, Text };

[[nodiscard]] ValueKind kindOf(const tarnSimulator::MachineValue &value);
// "KVane battery" for "kvane-battery".
[[nodiscard]] QString titleOf(const tarnSimulator::MachineValue &value);
[[nodiscard]] QString titleOf(tarnSimulator::ValueGroup group);
// What is used most comes first.
[[nodiscard]] QList<tarnSimulator::ValueGroup> groupsInOrder();
// The words that may be set: "user", "service".
[[nodiscard]] QStringList choicesOf(const tarnSimulator::MachineValue &value);
// As people read it: "wait for me" for "wait".
[[nodiscard]] QString choiceTitle(const QString &choice);
// The end of the slider. The register takes up to 255.
[[nodiscard]] int usualMaximum(const tarnSimulator::MachineValue &value);
// Whether a switch that reads like that is on; nothing when it is neither.
[[nodiscard]] std::optional<bool> isOn(const tarnSimulator::MachineValue &value, const QString &text);

} // namespace tarnPanel
