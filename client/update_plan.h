#pragma once

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
    // The value of "data" without which the update does not go on.
    QLatin1StringView wanted;
    std::span<const UpdatePhase> phases;
    // Another value came; "%1" stands for it.
    QLatin1StringView refusedText;
    // The same although the file lies where it was put.
    QLatin1StringView untouchedText;
    // Nobody waits any more, but the service goes on.
    QLatin1StringView goesOnText;
    QLatin1StringView serviceGoneText;
};

// One kind of firmware update from a user's point of view.
struct UpdatePlan
{
    QLatin1StringView verb;
    std::span<const UpdateStep> steps;
    // Said at the start.
    QLatin1StringView notice;
    // "%1" stands for the value of this key in the last answer.
    QLatin1StringView versionKey;
    QLatin1StringView doneText;
    // The same without a version, where there should be one.
    QLatin1StringView noVersionText;
    // What to do after it.
    QLatin1StringView adviceText;
};

[[nodiscard]] const UpdatePlan &mcuUpdatePlan();
[[nodiscard]] const UpdatePlan &ecUpdatePlan();

} // namespace tarnClient
