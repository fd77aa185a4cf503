#include "panel/computer/file_identity.h"

#include <sys/stat.h>

namespace tarnPanel {

std::optional<FileIdentity> identityOf(const std::filesystem::path &file)
{
    struct stat facts = {};
    if (::stat(file.c_str(), &facts) != 0)
        return std::nullopt;
    return FileIdentity {facts.st_dev, facts.st_ino, static_cast<std::uint64_t>(facts.st_size)};
}

} // namespace tarnPanel
