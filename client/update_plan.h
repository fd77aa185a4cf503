#pragma once

#include "firmware_name.h"

#include <QLatin1StringView>

#include <chrono>
#include <span>

namespace tarnClient {

// What the service does from this time of its schedule on, counted from the start of the step. An estimate:
// the service sends nothing before its answer.
struct UpdatePhase
{
    std::chrono::milliseconds begins;
    QLatin1StringView text;
};

// One request of an update, and the texts for an update that ends at it.
struct UpdateStep
{
    QLatin1StringView command;
    // The request carries the file's name; once it is sent, the service may take the file.
    bool takesFile = false;
    // Left out with --force.
    bool isPrecaution = false;
    // Its answer is the version that runs before the update.
    bool tellsVersion = false;
    // The value of "data" with which the update goes on; empty: any value.
    QLatin1StringView wanted;
    // How long the request is repeated while another value comes.
    std::chrono::milliseconds repeatedFor {0};
    std::span<const UpdatePhase> phases;
    // Shown when another value came, for which "%1" stands.
    QLatin1StringView refusedText;
    // Shown instead when it came within `untouchedBefore` after the request: too soon for the service to have
    // touched the device.
    QLatin1StringView untouchedText;
    std::chrono::milliseconds untouchedBefore {0};
    // Shown when tarnctl stops waiting, but the service goes on.
    QLatin1StringView goesOnText;
    QLatin1StringView serviceGoneText;
};

// One kind of firmware update from a user's point of view.
struct UpdatePlan
{
    QLatin1StringView verb;
    FirmwareKind kind;
    std::span<const UpdateStep> steps;
    // Shown at the start.
    QLatin1StringView notice;
    // "%1" stands for the value of this key in the last answer.
    QLatin1StringView versionKey;
    QLatin1StringView doneText;
    // Shown instead when the answer should have a version but has none.
    QLatin1StringView noVersionText;
    // The version that an MCU without a working firmware has, and what it means.
    QLatin1StringView nothingRunsVersion;
    QLatin1StringView nothingRunsText;
    // Shown when version "%1" runs, but "%2" should.
    QLatin1StringView otherVersionText;
    // What to do after the update; sameVersionText when the version has not changed.
    QLatin1StringView adviceText;
    QLatin1StringView sameVersionText;
};

[[nodiscard]] const UpdatePlan &mcuUpdatePlan();
[[nodiscard]] const UpdatePlan &ecUpdatePlan();

} // namespace tarnClient
