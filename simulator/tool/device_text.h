#pragma once

#include "simulator/device_tree.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace tarnSimulator {

// The names of "computer", "display" and so on, for the enumerators in their order.
inline constexpr std::string_view deviceKindNames[] = {"display", "audio", "other"};
inline constexpr std::string_view devicePlaceNames[] = {"computer", "box", "nowhere"};

// A device as it stands beside a recording: name, kind, place, started, problem, description, hardwareId,
// instanceId.
[[nodiscard]] QJsonObject toJson(const Device &device);
// Nothing when a key is missing or has another value than it may. Without a place it belongs to the computer.
[[nodiscard]] std::optional<Device> deviceOf(const QJsonObject &object);

} // namespace tarnSimulator
