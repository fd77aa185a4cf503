#pragma once

#include <QLatin1StringView>

// The forms of answers that several steps expect, as regular expressions, and what is said of them.
namespace tarnctl::answerForm {

// A level above 100 stands for one that could not be read.
inline constexpr QLatin1StringView level(R"(\d|\d\d|100)");
inline constexpr QLatin1StringView levelText("0 to 100 per cent");

// Of an MCU without firmware it would be 0.00.
inline constexpr QLatin1StringView version(R"((?!0\.00)\d{1,3}\.\d{2,6})");
inline constexpr QLatin1StringView versionText("a version such as 1.23");

} // namespace tarnctl::answerForm
