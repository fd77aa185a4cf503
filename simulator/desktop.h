#pragma once

#include "simulator/fault_panel.h"
#include "simulator/machine_state.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnSimulator {

// The user's side of the host: which session the service runs in, and what the stand-in for the GUI program
// answers.
class Desktop
{
public:
    static constexpr std::int32_t waits = -1; // the window stays open until there is an answer

    explicit Desktop(MachineState &state)
        : shared(state.desktop)
        , seenMs(state.guiSeenMs)
    { }

    void reset();

    [[nodiscard]] bool isServiceSession() const { return shared.serviceSession.load() != 0; }
    void setServiceSession(bool service) { shared.serviceSession.store(service ? 1 : 0); }

    [[nodiscard]] std::int32_t answer() const { return shared.guiAnswer.load(); }
    void setAnswer(std::int32_t exitCode) { shared.guiAnswer.store(exitCode); }

    // Called by the stand-in. It calls windowStaysOpen() again and again; when the calls stop, it has been
    // killed.
    void windowOpened(std::string_view programSwitch);
    void windowStaysOpen();
    void windowClosed();

    [[nodiscard]] std::uint32_t windowsShown() const { return shared.guiShown.load(); }
    [[nodiscard]] std::uint32_t windowsOpen() const;
    [[nodiscard]] std::string lastSwitch() const;

private:
    DesktopState &shared;
    SharedLong &seenMs;
};

} // namespace tarnSimulator
