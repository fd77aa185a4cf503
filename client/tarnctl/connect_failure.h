#pragma once

#include "tarn/client.h"

namespace tarnctl {

// Why there is no connection to the service on this pipe, and what the user can do about it. `systemText` are
// the system's own words.
[[nodiscard]] QString connectFailureText(
    const QString &pipeName, tarn::Client::Problem problem, const QString &systemText);

} // namespace tarnctl
