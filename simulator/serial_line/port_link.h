#pragma once

#include "simulator/serial_line/port_claim.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tarnSimulator {

// The name under which a program finds the serial port, for as long as the object lives.
class PortLink
{
public:
    // The link that a port without a server has left behind is replaced. Anything else of that name stays and
    // is an error, and so is a port that is served already.
    [[nodiscard]] static std::optional<PortLink> make(
        const std::filesystem::path &link, const std::string &terminalName, std::string &error);

    ~PortLink();
    PortLink(PortLink &&other) noexcept;
    PortLink &operator=(PortLink &&) = delete;

private:
    PortLink(std::filesystem::path madeLink, std::string madeTarget, PortClaim &&madeClaim);

    std::filesystem::path link; // empty when moved from
    std::string target;
    PortClaim claim;
};

} // namespace tarnSimulator
