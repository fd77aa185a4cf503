#pragma once

#include "tarn/firmware_update.h"
#include "update_setting.h"

#include <optional>

namespace tarn {

// The end of an update whose file cannot be used.
[[nodiscard]] FirmwareResult badFileResult(const QString &text);

// Why an update cannot begin, as far as it shows without the service and without touching anything. May
// block.
[[nodiscard]] std::optional<FirmwareResult> updateObjection(
    const QString &file, const FirmwareUpdateOptions &options, const UpdateSetting &setting);

} // namespace tarn
