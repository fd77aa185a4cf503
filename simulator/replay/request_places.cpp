#include "simulator/replay/request_places.h"

#include "device/ec_registers.h"
#include "simulator/recording/decoded_accesses.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace tarnSimulator {

using tarnRecording::Recording;
using tarnRecording::RequestRecord;

namespace {

bool isLook(const DecodedAccess &access)
{
    return access.address == tarnDeviceInfos::MCU_LINK_STATUS && access.kind == DecodedAccess::Kind::Read;
}

// The monitor begins each hold with a look at the link, so it is the thread with the most of them.
std::uint32_t monitorThread(const std::vector<DecodedAccess> &accesses)
{
    std::map<std::uint32_t, std::uint64_t> counts;
    for (const DecodedAccess &access : accesses)
        counts[access.thread] += isLook(access) ? 1 : 0;
    const auto most = std::max_element(counts.begin(), counts.end(),
        [](const auto &one, const auto &other) { return one.second < other.second; });
    return most == counts.end() ? 0 : most->first;
}

} // namespace

// The first access of all belongs to the monitor, which then looks at more than the link. A request that came
// during the looks at the status before the command is moved too, which does no harm.
std::vector<RequestRecord> placedSteps(const Recording &recording, std::vector<RequestRecord> steps)
{
    const std::vector<DecodedAccess> accesses = decodedAccesses(recording);
    const std::uint32_t monitor = monitorThread(accesses);
    const auto isBeforeHold = [&](std::uint64_t after) {
        const auto next = std::upper_bound(accesses.begin(), accesses.end(), after,
            [](std::uint64_t number, const DecodedAccess &access) { return number < access.number; });
        const bool isLookOfMonitor = next != accesses.end() && next->thread == monitor && isLook(*next);
        return isLookOfMonitor || after + 1 == recording.header.firstAccess;
    };
    std::uint64_t earliest = 0; // the order of the steps stays
    for (RequestRecord &step : steps) {
        if (step.kind == RequestRecord::Kind::Request && isBeforeHold(step.after))
            ++step.after;
        step.after = std::max(step.after, earliest);
        earliest = step.after;
    }
    return steps;
}

} // namespace tarnSimulator
