#include "simulator/recording/recording_summary.h"

#include <algorithm>
#include <cmath>

namespace tarnSimulator {

std::uint64_t TimeSpread::quantile(double share) const
{
    if (times.empty())
        return 0;
    std::vector<std::uint64_t> sorted = times;
    std::sort(sorted.begin(), sorted.end());
    const auto wanted = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(wanted, 1, sorted.size()) - 1];
}

std::map<std::uint16_t, RegisterSummary> summaryOf(const std::vector<DecodedAccess> &accesses)
{
    std::map<std::uint16_t, RegisterSummary> summary;
    for (const DecodedAccess &access : accesses) {
        RegisterSummary &row = summary[access.address];
        const bool isRead = access.kind == DecodedAccess::Kind::Read;
        ++(isRead ? row.reads : row.writes);
        ++(isRead ? row.readValues : row.writtenValues)[access.value];
        for (const std::uint64_t us : access.acceptanceUs)
            row.acceptanceUs.add(us);
        if (access.answerUs)
            row.answerUs.add(*access.answerUs);
    }
    return summary;
}

} // namespace tarnSimulator
