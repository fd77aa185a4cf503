#include "simulator/desktop.h"

#include "simulator/shared_text.h"

namespace tarnSimulator {

void Desktop::reset()
{
    setServiceSession(false);
    setAnswer(1);
    shared.guiShown.store(0);
    shared.guiOpen.store(0);
    storeText(shared.guiSwitch, {});
}

void Desktop::windowOpened(std::string_view programSwitch)
{
    storeText(shared.guiSwitch, programSwitch);
    shared.guiOpen.fetch_add(1);
    shared.guiShown.fetch_add(1);
}

// The machine may have been reset while the window was open.
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
