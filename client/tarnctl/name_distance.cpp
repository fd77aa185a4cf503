#include "name_distance.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace tarnctl {

qsizetype nameDistance(QStringView left, QStringView right)
{
    using Row = std::vector<qsizetype>;
    const auto columns = static_cast<std::size_t>(right.size()) + 1;
    Row beforeLast(columns);
    Row last(columns);
    Row current(columns);
    std::iota(last.begin(), last.end(), 0);
    for (qsizetype i = 1; i <= left.size(); ++i) {
        current[0] = i;
        for (qsizetype j = 1; j <= right.size(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const qsizetype wrongLetter = left[i - 1] == right[j - 1] ? 0 : 1;
            current[at] = std::min({last[at] + 1, current[at - 1] + 1, last[at - 1] + wrongLetter});
            const bool swapped = i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
            if (swapped)
                current[at] = std::min(current[at], beforeLast[at - 2] + 1);
        }
        std::swap(beforeLast, last);
        std::swap(last, current);
    }
    return last[columns - 1];
}

} // namespace tarnctl
