#include "simulator/serial_line/serve_line.h"

#include "simulator/boot_loader.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/signalfd.h>

namespace tarnSimulator {

int openStopSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        ::sigaddset(&signals, number);
    if (::pthread_sigmask(SIG_BLOCK, &signals, nullptr) != 0)
        return -1;
    return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

void serveLine(MachineState &machine, const PseudoTerminal &line, int stop)
{
    BootLoader bootLoader(machine);
    std::array<pollfd, 2> sources {{{stop, POLLIN, 0}, {line.descriptor(), POLLIN, 0}}};
    while (true) {
        const int ready = ::poll(sources.data(), sources.size(), -1);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0 || sources[0].revents != 0)
            return;
        line.write(bootLoader.receive(line.read()));
    }
}

} // namespace tarnSimulator
