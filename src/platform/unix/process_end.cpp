#include "platform/process_end.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

namespace tarnPlatform {
namespace {

constexpr std::array stopSignals {SIGTERM, SIGINT, SIGHUP};

// A signal handler may do little more than write a byte; the notifier turns it into an event.
std::array<int, 2> signalSockets {-1, -1};

void noteSignal(int)
{
    const int before = errno; // of the code that is interrupted
    StopRequests::noteRequest();
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(signalSockets[0], &byte, sizeof byte);
    errno = before;
}

} // namespace

StopRequests::StopRequests()
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalSockets.data()) != 0)
        return; // the signals then keep their default action
    auto *notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(signalSockets[1], &byte, sizeof byte) > 0) { }
        Q_EMIT stopRequested();
    });

    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : stopSignals) {
        struct sigaction inherited = {};
        ::sigaction(signal, nullptr, &inherited);
        const bool keptByNohup = signal == SIGHUP && inherited.sa_handler == SIG_IGN;
        if (!keptByNohup)
            ::sigaction(signal, &action, nullptr);
    }
}

void exitAtOnce(int code)
{
    std::_Exit(code);
}

} // namespace tarnPlatform
