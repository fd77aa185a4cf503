#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tarnPanel {

// Tells whether a name still stands for the same file as before.
struct FileIdentity
{
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    std::uint64_t size = 0; // a mapped file that has become shorter must not be read any more

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};

// Nothing when there is no such file.
[[nodiscard]] std::optional<FileIdentity> identityOf(const std::filesystem::path &file);

} // namespace tarnPanel
