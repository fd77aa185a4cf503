#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tarnSimulator {

// The sole right of a process to serve the port of that name. It ends with the process, however that ends,
// and leaves nothing behind.
class PortClaim
{
public:
    // Empty when another process has it; `error` then says so.
    [[nodiscard]] static std::optional<PortClaim> take(
        const std::filesystem::path &absoluteLink, std::string &error);

    ~PortClaim();
    PortClaim(PortClaim &&other) noexcept;
    PortClaim &operator=(PortClaim &&) = delete;

private:
    explicit PortClaim(int boundSocket)
        : socket(boundSocket)
    { }

    int socket; // -1 when moved from
};

} // namespace tarnSimulator
