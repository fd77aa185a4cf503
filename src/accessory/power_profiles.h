#pragma once

#include "device/ec_registers.h"

#include <QByteArray>
#include <QtGlobal>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarnAccessoryManager {

// Limits in watts, as the EC takes them.
struct PowerLimits
{
    quint8 pl1;
    quint8 pl2;
    quint8 pl4;
};

inline constexpr quint8 fanQuiet = 0;
inline constexpr quint8 fanFast = 1;

// A performance profile.
struct PowerProfile
{
    int number; // for clients and in the file that remembers the profile
    const char *name; // for clients and in the log
    quint8 ecFlag; // in EC_TARN_POWER_MODE, where it is independent of the limits
    PowerLimits fullSupply; // supply modes 0 and 2
    PowerLimits weakSupply; // supply mode 1
    PowerLimits kvaneCharging; // supply mode 3
    PowerLimits kvaneNotCharging; // supply mode 3
    PowerLimits fallback; // supply mode unknown or not read
    quint8 fanMode;
    quint8 fanModeOnKvane; // supply mode 3
};

// On the KVane's supply "high" has the limits of "balance" and a quiet fan: the KVane cannot give more. The
// fallback is a set of its own, not that of the weak supply.
inline constexpr PowerProfile powerProfiles[] = {
    {0, "high", tarnDeviceInfos::TARN_POWER_MODE_HIGH, {45, 55, 75}, {30, 30, 55}, {28, 35, 90}, {15, 28, 50},
        {45, 55, 75}, fanFast, fanQuiet},
    {1, "balance", tarnDeviceInfos::TARN_POWER_MODE_BALANCE, {35, 55, 75}, {28, 30, 55}, {28, 35, 90},
        {15, 28, 50}, {28, 30, 55}, fanQuiet, fanQuiet},
    {2, "low", tarnDeviceInfos::TARN_POWER_MODE_LOW, {15, 55, 75}, {15, 30, 55}, {15, 28, 50}, {12, 15, 35},
        {15, 20, 36}, fanQuiet, fanQuiet},
};

// The profile of a computer on which none has been chosen.
inline constexpr int defaultProfile = 1;
// Stands for an EC flag that belongs to no profile or cannot be read. Clients know it as "hide".
inline constexpr int noProfile = 3;
inline constexpr char noProfileName[] = "hide";

template <typename Predicate>
[[nodiscard]] constexpr const PowerProfile *findProfile(const Predicate &matches)
{
    const auto *const found = std::find_if(std::begin(powerProfiles), std::end(powerProfiles), matches);
    return found == std::end(powerProfiles) ? nullptr : found;
}

// Null when there is no such profile; also in the two below.
[[nodiscard]] constexpr const PowerProfile *profileOfNumber(qint64 number)
{
    return findProfile([number](const PowerProfile &profile) { return profile.number == number; });
}
[[nodiscard]] constexpr const PowerProfile *profileOfName(std::string_view name)
{
    return findProfile([name](const PowerProfile &profile) { return profile.name == name; });
}
[[nodiscard]] constexpr const PowerProfile *profileOfFlag(quint8 ecFlag)
{
    return findProfile([ecFlag](const PowerProfile &profile) { return profile.ecFlag == ecFlag; });
}

// For the assertions below: under UBSan GCC does not take a comparison with a null pointer for a constant.
[[nodiscard]] constexpr bool isProfile(int number)
{
    return std::any_of(std::begin(powerProfiles), std::end(powerProfiles),
        [number](const PowerProfile &profile) { return profile.number == number; });
}
static_assert(isProfile(defaultProfile));
static_assert(!isProfile(noProfile));

// A log line about a profile, whose name replaces "%1". A constData() of the result is valid only as long as
// the result.
[[nodiscard]] inline QByteArray profileText(const char *line, const char *profile)
{
    return QByteArray(line).replace("%1", profile);
}

} // namespace tarnAccessoryManager
