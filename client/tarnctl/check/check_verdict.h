#pragma once

#include <QLatin1StringView>

#include <algorithm>

namespace tarnctl {

// What came of a step. The greatest one of its items counts.
enum class CheckVerdict { Skipped, AsExpected, NotAsExpected, NoAnswer };

[[nodiscard]] constexpr CheckVerdict worse(CheckVerdict one, CheckVerdict other)
{
    return std::max(one, other);
}

[[nodiscard]] constexpr bool isBad(CheckVerdict verdict)
{
    return verdict > CheckVerdict::AsExpected;
}

[[nodiscard]] constexpr QLatin1StringView wordOf(CheckVerdict verdict)
{
    constexpr QLatin1StringView words[] = {
        QLatin1StringView("skipped"),
        QLatin1StringView("as expected"),
        QLatin1StringView("NOT as expected"),
        QLatin1StringView("NO ANSWER"),
    };
    return words[static_cast<std::size_t>(verdict)];
}

} // namespace tarnctl
