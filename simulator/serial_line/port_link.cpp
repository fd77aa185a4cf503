#include "simulator/serial_line/port_link.h"

#include <utility>

namespace tarnSimulator {

std::optional<PortLink> PortLink::make(
    const std::filesystem::path &link, const std::string &terminalName, std::string &error)
{
    std::error_code code;
    const std::filesystem::path absoluteLink = std::filesystem::absolute(link, code);
    if (std::filesystem::is_symlink(absoluteLink, code)) {
        std::filesystem::remove(absoluteLink, code);
    }
    std::filesystem::create_symlink(terminalName, absoluteLink, code);
    if (code) {
        error = "The serial port cannot be named \"" + absoluteLink.string() + "\": " + code.message() + ".";
        return std::nullopt;
    }
    return PortLink(absoluteLink, terminalName);
}

PortLink::PortLink(std::filesystem::path madeLink, std::string madeTarget)
    : link(std::move(madeLink))
    , target(std::move(madeTarget))
{ }

PortLink::PortLink(PortLink &&other) noexcept
    : link(std::exchange(other.link, {}))
    , target(std::move(other.target))
{ }

// Another one may have taken the name over in the meantime.
PortLink::~PortLink()
{
    std::error_code ignored;
    if (!link.empty() && std::filesystem::read_symlink(link, ignored) == target) {
        std::filesystem::remove(link, ignored);
    }
}

} // namespace tarnSimulator
