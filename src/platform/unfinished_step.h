#pragma once

#include <atomic>

namespace tarnPlatform {

// Lives while something has been begun that must not be left half done, such as a device that is switched off
// only to be switched on again, or one that is switched and of which the EC has yet to be told. The end of
// the process waits for it longer than for anything else. Whoever has made one looks only then whether the
// process ends already, so that no step slips through in between.
class UnfinishedStep
{
public:
    UnfinishedStep() { ++count; }
    ~UnfinishedStep() { --count; }
    UnfinishedStep(const UnfinishedStep &) = delete;
    UnfinishedStep &operator=(const UnfinishedStep &) = delete;

    [[nodiscard]] static bool any() { return count > 0; }

private:
    static inline std::atomic<int> count {0};
};

} // namespace tarnPlatform
