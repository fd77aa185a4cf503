#include "simulator/serial_line/pseudo_terminal.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace tarnSimulator {

namespace {

constexpr std::size_t chunkSize = 4096; // bytes
constexpr std::size_t longestName = 256;

// Bytes pass as they are, without echo, line editing or signals.
bool makeRaw(int terminal)
{
    termios settings = {};
    if (::tcgetattr(terminal, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    return ::tcsetattr(terminal, TCSANOW, &settings) == 0;
}

} // namespace

std::optional<PseudoTerminal> PseudoTerminal::open(std::string &error)
{
    PseudoTerminal made;
    std::array<char, longestName> name {};
    made.master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (made.master >= 0 && ::grantpt(made.master) == 0 && ::unlockpt(made.master) == 0
        && ::ptsname_r(made.master, name.data(), name.size()) == 0) {
        made.slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    if (made.slave < 0 || !makeRaw(made.slave)) {
        error = std::strerror(errno);
        return std::nullopt;
    }
    made.name = name.data();
    return made;
}

PseudoTerminal::~PseudoTerminal()
{
    for (const int descriptor : {slave, master}) {
        if (descriptor >= 0)
            ::close(descriptor);
    }
}

PseudoTerminal::PseudoTerminal(PseudoTerminal &&other) noexcept
    : master(std::exchange(other.master, -1))
    , slave(std::exchange(other.slave, -1))
    , name(std::move(other.name))
{ }

std::vector<std::uint8_t> PseudoTerminal::read() const
{
    std::vector<std::uint8_t> bytes(chunkSize);
    const ssize_t count = ::read(master, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

void PseudoTerminal::write(std::span<const std::uint8_t> bytes) const
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(master, bytes.data(), bytes.size());
        if (count > 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return;
    }
}

} // namespace tarnSimulator
