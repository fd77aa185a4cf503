#include "interrupt_flag.h"

#include <csignal>

namespace tarnctl {

namespace {

volatile std::sig_atomic_t raised = 0;

extern "C" void raiseInterruptFlag(int)
{
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
