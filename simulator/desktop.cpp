#include "simulator/desktop.h"

#include "simulator/shared_text.h"

#include <chrono>

namespace tarnSimulator {

namespace {

constexpr std::uint64_t forgottenAfterMs = 1000;

// The time of day, because the steady clocks of a native program and of one under Wine drift apart. When it
// is set by more than forgottenAfterMs, the number of open windows is wrong until the next windowStaysOpen().
std::uint64_t timeOfDayMs()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

} // namespace

void Desktop::reset()
{
    setServiceSession(false);
    setAnswer(1);
    shared.guiShown.store(0);
    shared.guiOpen.store(0);
    seenMs.store(0);
    storeText(shared.guiSwitch, {});
}

void Desktop::windowOpened(std::string_view programSwitch)
{
    storeText(shared.guiSwitch, programSwitch);
    if (windowsOpen() == 0) {
        shared.guiOpen.store(0); // a killed stand-in does not call windowClosed()
    }
    windowStaysOpen();
    shared.guiOpen.fetch_add(1);
    shared.guiShown.fetch_add(1);
}

void Desktop::windowStaysOpen()
{
    seenMs.store(timeOfDayMs());
}

std::uint32_t Desktop::windowsOpen() const
{
    const std::uint64_t seen = seenMs.load();
    // A time that lies a little ahead is no old one: the time of day is corrected now and then.
    const std::uint64_t now = timeOfDayMs();
    const std::uint64_t apartMs = now > seen ? now - seen : seen - now;
    const bool isForgotten = seen != 0 && apartMs >= forgottenAfterMs;
    return isForgotten ? 0 : shared.guiOpen.load();
}

// Not below 0: the machine may have been reset while the window was open.
void Desktop::windowClosed()
{
    std::uint32_t open = shared.guiOpen.load();
    while (open > 0 && !shared.guiOpen.compare_exchange_weak(open, open - 1)) { }
}

std::string Desktop::lastSwitch() const
{
    return loadText(shared.guiSwitch);
}

} // namespace tarnSimulator
