#include "simulator/serial_line/port_link.h"

#include <utility>

namespace tarnSimulator {

namespace {

std::string refusal(const std::filesystem::path &link, const std::string &reason)
{
    return "The serial port cannot be named \"" + link.string() + "\": " + reason + ".";
}

// A server that was killed leaves its link, which leads to its terminal or to where that was.
bool isLeftover(const std::filesystem::path &link)
{
    std::error_code ignored;
    return std::filesystem::read_symlink(link, ignored).parent_path() == "/dev/pts";
}

} // namespace

std::optional<PortLink> PortLink::make(
    const std::filesystem::path &link, const std::string &terminalName, std::string &error)
{
    std::error_code code;
    const std::filesystem::path absoluteLink = std::filesystem::absolute(link, code);
    auto claim = PortClaim::take(absoluteLink, error);
    if (!claim) {
        error = refusal(absoluteLink, error);
        return std::nullopt;
    }
    if (isLeftover(absoluteLink))
        std::filesystem::remove(absoluteLink, code);
    std::filesystem::create_symlink(terminalName, absoluteLink, code);
    if (code) {
        error = refusal(absoluteLink, code.message());
        return std::nullopt;
    }
    return PortLink(absoluteLink, terminalName, std::move(*claim));
}

PortLink::PortLink(std::filesystem::path madeLink, std::string madeTarget, PortClaim &&madeClaim)
    : link(std::move(madeLink))
    , target(std::move(madeTarget))
    , claim(std::move(madeClaim))
{ }

PortLink::PortLink(PortLink &&other) noexcept
    : link(std::exchange(other.link, {}))
    , target(std::move(other.target))
    , claim(std::move(other.claim))
{ }

// Another file may have been put there in the meantime.
PortLink::~PortLink()
{
    std::error_code ignored;
    if (!link.empty() && std::filesystem::read_symlink(link, ignored) == target)
        std::filesystem::remove(link, ignored);
}

} // namespace tarnSimulator
