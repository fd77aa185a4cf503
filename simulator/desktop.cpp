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

std::string Desktop::lastSwitch() const
{
    return loadText(shared.guiSwitch);
}

} // namespace tarnSimulator
