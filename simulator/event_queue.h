#pragma once

#include "simulator/machine_state.h"

#include <optional>
#include <vector>

namespace tarnSimulator {

struct AppEvent
{
    std::uint8_t code = 0;
    std::uint8_t data = 0;
};

// Events of the graphics box that wait for the host. They are armed from outside and handed out in that
// order.
class EventQueue
{
public:
    explicit EventQueue(EventQueueState &queue)
        : shared(queue)
    { }

    // False when eventSlots events wait already.
    [[nodiscard]] bool arm(AppEvent event);
    [[nodiscard]] std::optional<AppEvent> take();
    [[nodiscard]] std::vector<AppEvent> waiting() const;

private:
    EventQueueState &shared;
};

} // namespace tarnSimulator
