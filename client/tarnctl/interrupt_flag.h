#pragma once

namespace tarnctl {

// While an object exists, Ctrl+C (SIGINT) and SIGTERM set a flag instead of ending the process.
class InterruptFlag
{
public:
    InterruptFlag();
    ~InterruptFlag();
    InterruptFlag(const InterruptFlag &) = delete;
    InterruptFlag &operator=(const InterruptFlag &) = delete;

    [[nodiscard]] bool isRaised() const;

private:
    using Handler = void (*)(int);

    Handler formerInterrupt;
    Handler formerTerminate;
};

} // namespace tarnctl
