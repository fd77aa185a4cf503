#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarnSimulator {

// The name under which a program finds the serial port, for as long as the object lives.
class PortLink
{
public:
    // A link of that name that is there already is replaced; anything else stays and is an error.
    [[nodiscard]] static std::optional<PortLink> make(
        const std::filesystem::path &link, const std::string &terminalName, std::string &error);

    ~PortLink();
    PortLink(PortLink &&other) noexcept;
    PortLink &operator=(PortLink &&) = delete;

private:
    PortLink(std::filesystem::path madeLink, std::string madeTarget);

    std::filesystem::path link; // empty when moved from
    std::string target;
};

} // namespace tarnSimulator
