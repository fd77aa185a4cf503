#pragma once

#include <QString>

#include <optional>

namespace tarn {

enum class FirmwareKind { Mcu, Ec };

// Why a firmware file must not be flashed under this name, in whole sentences; nothing when it may.
[[nodiscard]] std::optional<QString> firmwareNameObjection(const QString &name, FirmwareKind kind);

} // namespace tarn
