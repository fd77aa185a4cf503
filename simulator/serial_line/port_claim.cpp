#include "simulator/serial_line/port_claim.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <functional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace tarnSimulator {

namespace {

// One name for all ways to write the path of the link. The link itself is not followed.
std::string claimName(const std::filesystem::path &absoluteLink)
{
    std::error_code code;
    const std::filesystem::path folder = std::filesystem::canonical(absoluteLink.parent_path(), code);
    const std::filesystem::path path = (code ? absoluteLink.parent_path() : folder) / absoluteLink.filename();
    return "tarnserial-" + std::to_string(std::hash<std::string> {}(path.string()));
}

} // namespace

// Locks neither the terminal, because the flasher locks it, nor the folder, because it may hold several
// ports. A socket with an abstract address has no file and can be bound by one process only.
std::optional<PortClaim> PortClaim::take(const std::filesystem::path &absoluteLink, std::string &error)
{
    PortClaim claim(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const std::string name = claimName(absoluteLink);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    // A zero in front makes the address abstract.
    std::copy(name.begin(), name.end(), address.sun_path + 1);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    if (claim.socket < 0 || ::bind(claim.socket, reinterpret_cast<const sockaddr *>(&address), size) != 0) {
        error = errno == EADDRINUSE ? "another tarnserial serves that port" : std::strerror(errno);
        return std::nullopt;
    }
    return claim;
}

PortClaim::~PortClaim()
{
    if (socket >= 0)
        ::close(socket);
}

PortClaim::PortClaim(PortClaim &&other) noexcept
    : socket(std::exchange(other.socket, -1))
{ }

} // namespace tarnSimulator
