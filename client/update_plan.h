#pragma once

#include "firmware_name.h"

#include <QLatin1StringView>

#include <chrono>
#include <span>

namespace tarnClient {

// What the service is presumably doing from a moment of its schedule on. It sends nothing before its answer.
struct UpdatePhase
{
    std::chrono::milliseconds begins;
    QLatin1StringView text;
};

// One request of an update, and what stands when the update ends with it.
struct UpdateStep
{
    QLatin1StringView command;
    // Carries the file's name; from here on the file is the service's to take.
    bool takesFile = false;
    // Left out with --force.
    bool isPrecaution = false;
    // Its answer is the version that runs before the update.
    bool tellsVersion = false;
    // The value of "data" without which the update does not go on; empty: any will do.
    QLatin1StringView wanted;
    // How long to go on asking while another value comes.
    std::chrono::milliseconds patience {0};
    std::span<const UpdatePhase> phases;
    // Another value came; "%1" stands for it.
    QLatin1StringView refusedText;
    // The same, sooner after the request than the service can have touched the device.
    QLatin1StringView untouchedText;
    std::chrono::milliseconds untouchedBefore {0};
    // Nobody waits any more, but the service goes on.
    QLatin1StringView goesOnText;
    QLatin1StringView serviceGoneText;
};

// One kind of firmware update from a user's point of view.
struct UpdatePlan
{
    QLatin1StringView verb;
    FirmwareKind kind;
    std::span<const UpdateStep> steps;
    // Said at the start.
    QLatin1StringView notice;
    // "%1" stands for the value of this key in the last answer.
    QLatin1StringView versionKey;
    QLatin1StringView doneText;
    // The same without a version, where there should be one.
    QLatin1StringView noVersionText;
    // The version that an MCU without a working firmware has, and what it means.
    QLatin1StringView nothingRunsVersion;
    QLatin1StringView nothingRunsText;
    // "%1" runs, but "%2" should.
    QLatin1StringView otherVersionText;
    // What to do after it; the latter where the version is that of before.
    QLatin1StringView adviceText;
    QLatin1StringView sameVersionText;
};

[[nodiscard]] const UpdatePlan &mcuUpdatePlan();
[[nodiscard]] const UpdatePlan &ecUpdatePlan();

} // namespace tarnClient
