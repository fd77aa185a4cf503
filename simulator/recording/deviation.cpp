#include "simulator/recording/deviation.h"

#include "simulator/register_table.h"
#include "simulator/value_text.h"

#include <algorithm>

namespace tarnSimulator {

namespace {

std::string byteText(std::uint8_t value)
{
    return hexText(value, 2) + " (" + std::to_string(value) + ")";
}

} // namespace

void DeviationList::add(Groups &groups, const Deviation &deviation)
{
    Group &group = groups.at(static_cast<std::size_t>(deviation.kind));
    if (const auto place = group.places.find(deviation.what); place != group.places.end()) {
        Deviation &same = group.different[place->second];
        same.count += deviation.count;
        same.longestUs = std::max(same.longestUs, deviation.longestUs);
        return;
    }
    if (group.different.size() == mostDifferent) {
        group.others += deviation.count;
        return;
    }
    group.places.emplace(deviation.what, group.different.size());
    group.different.push_back(deviation);
}

void DeviationList::addSuspended()
{
    for (std::size_t kind = 0; kind < suspended.size(); ++kind) {
        for (const Deviation &deviation : suspended.at(kind).different)
            add(deviation);
        known.at(kind).others += suspended.at(kind).others;
    }
    dropSuspended();
}

std::vector<Deviation> DeviationList::of(Deviation::Kind kind) const
{
    std::vector<Deviation> some = of(known, kind).different;
    std::stable_sort(some.begin(), some.end(),
        [](const Deviation &left, const Deviation &right) { return left.number < right.number; });
    return some;
}

std::string valueDifference(const DecodedAccess &access, std::uint8_t expected)
{
    return addressText(access.address) + " is " + byteText(access.value) + ", expected " + byteText(expected);
}

} // namespace tarnSimulator
