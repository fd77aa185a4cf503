#pragma once

#include "client/command_catalogue.h"

#include <optional>

namespace tarnctl {

[[nodiscard]] QString usageText();
[[nodiscard]] QString generalHelp();
[[nodiscard]] QString commandHelp(const tarn::CommandEntry &entry);
// Help on a command or on one of the tool's own words; nothing for anything else.
[[nodiscard]] std::optional<QString> topicHelp(const QString &topic);
// What can be typed while watching.
[[nodiscard]] QString typingHelp();
// The commands' names, one per line.
[[nodiscard]] QString commandNames();

} // namespace tarnctl
