#pragma once

#include "tarn/firmware_name.h"

#include <QLatin1StringView>

#include <chrono>
#include <span>

namespace tarn {

// What the service does from this time of its schedule on, counted from the writing of the request. An
// estimate: the service sends nothing before its answer.
struct UpdatePhase
{
    std::chrono::milliseconds begins;
    QLatin1StringView text;
};

// A text for the user: what happened, and what that means for the device and what to do. "%1" stands for
// what came, "%2" for what was wanted or for the program's name.
struct UpdateText
{
    QLatin1StringView what;
    QLatin1StringView advice;
};

// One request of an update, and the texts for an update that ends at it.
struct UpdateStep
{
    QLatin1StringView command;
    // The request carries the file's name; once it is sent, the service may take the file.
    bool takesFile = false;
    // Only asks; left out when the precautions are skipped.
    bool isPrecaution = false;
    // Its answer is the version that runs before the update.
    bool tellsVersion = false;
    // The value of "data" with which the update goes on; empty: any value.
    QLatin1StringView wanted;
    // How long the request is repeated while another value comes.
    std::chrono::milliseconds repeatedFor {0};
    std::span<const UpdatePhase> phases;
    // When another value came, for which "%1" stands. "%2" is the program's name.
    UpdateText refused;
    // Instead when it came within `untouchedBefore` after the request was written: too soon for the service
    // to have touched the device.
    UpdateText untouched;
    std::chrono::milliseconds untouchedBefore {0};
    // When nobody waits for the answer any more, but the service goes on.
    QLatin1StringView goesOnAdvice;
    QLatin1StringView serviceGoneAdvice;
};

// One kind of firmware update from a user's point of view.
struct UpdatePlan
{
    FirmwareKind kind;
    std::span<const UpdateStep> steps;
    // For the user at the start.
    QLatin1StringView notice;
    // The key of the version in the last answer; empty: it has none.
    QLatin1StringView versionKey;
    // "%1" stands for the version.
    UpdateText done;
    // Instead when the answer should have a version but has none.
    QLatin1StringView noVersionText;
    // The version that an MCU without a working firmware has, and what it means.
    QLatin1StringView nothingRunsVersion;
    UpdateText nothingRuns;
    // When version "%1" runs, but "%2" should.
    UpdateText otherVersion;
    // The advice when the version has not changed.
    QLatin1StringView sameVersionAdvice;
};

[[nodiscard]] const UpdatePlan &updatePlan(FirmwareKind kind);

} // namespace tarn
