#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarnSimulator {

// A simulated serial port. Its other end is opened by programs under the name of terminalName().
class PseudoTerminal
{
public:
    // Empty when the system has none left; `error` then says why.
    [[nodiscard]] static std::optional<PseudoTerminal> open(std::string &error);

    ~PseudoTerminal();
    PseudoTerminal(PseudoTerminal &&other) noexcept;
    PseudoTerminal &operator=(PseudoTerminal &&) = delete;

    [[nodiscard]] int descriptor() const { return master; }
    [[nodiscard]] const std::string &terminalName() const { return name; }

    // What has arrived. Empty when nothing has; does not wait.
    [[nodiscard]] std::vector<std::uint8_t> read() const;
    // What the other end has no room for is lost, as on a line without a reader.
    void write(std::span<const std::uint8_t> bytes) const;

private:
    PseudoTerminal() = default;

    int master = -1;
    int slave = -1; // kept open: without it the line would hang up whenever a program closes its end
    std::string name;
};

} // namespace tarnSimulator
