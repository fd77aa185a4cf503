#include "interrupt_flag.h"

#include <csignal>

namespace tarnctl {

namespace {

volatile std::sig_atomic_t raised = 0;

// Windows takes the handler away when it calls it: without this a second Ctrl+C would end the process.
extern "C" void raiseInterruptFlag(int number)
{
    std::signal(number, raiseInterruptFlag);
    raised = 1;
}

} // namespace

InterruptFlag::InterruptFlag()
{
    raised = 0;
    formerInterrupt = std::signal(SIGINT, raiseInterruptFlag);
    formerTerminate = std::signal(SIGTERM, raiseInterruptFlag);
}

InterruptFlag::~InterruptFlag()
{
    std::signal(SIGINT, formerInterrupt);
    std::signal(SIGTERM, formerTerminate);
}

bool InterruptFlag::isRaised() const
{
    return raised != 0;
}

} // namespace tarnctl
