#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace tarnSimulator {

// A whole file mapped into memory, shared with every other process that maps it.
class SharedMapping
{
public:
    // Empty when the file cannot be mapped; `error` then says why, without naming the file.
    [[nodiscard]] static std::optional<SharedMapping> open(
        const std::filesystem::path &file, std::string &error);

    ~SharedMapping();
    SharedMapping(SharedMapping &&other) noexcept;
    SharedMapping &operator=(SharedMapping &&other) noexcept;

    // Null when the file is empty.
    [[nodiscard]] void *data() const { return start; }
    [[nodiscard]] std::size_t size() const { return length; }

private:
    SharedMapping(void *mapped, std::size_t mappedLength)
        : start(mapped)
        , length(mappedLength)
    { }

    void *start;
    std::size_t length;
};

// Gives the file its final name in one step. False when that failed and no file of that name is there; when
// another process was faster its file stays, `file` is left over, and the result is true.
[[nodiscard]] bool renameUnlessThere(
    const std::filesystem::path &file, const std::filesystem::path &finalName, std::string &error);

} // namespace tarnSimulator
