#pragma once

#include <tarn/client.h>

namespace tarnPanel {

// What the connection is like, and why, in whole sentences.
[[nodiscard]] QString connectionText(const tarn::Client &client);
// Why there is no connection; empty when nothing is in the way.
[[nodiscard]] QString problemText(const tarn::Client &client);
// "unknown" where it is not known.
[[nodiscard]] QString accessoryText(std::optional<tarn::Accessory> accessory);

} // namespace tarnPanel
