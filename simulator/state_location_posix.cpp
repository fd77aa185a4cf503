#include "simulator/state_location.h"

#include <cstdlib>
#include <dlfcn.h>

namespace tarnSimulator {

std::optional<std::filesystem::path> stateFileFromEnvironment()
{
    const char *value = std::getenv(stateFileVariable);
    if (value == nullptr || *value == '\0')
        return std::nullopt;
    return std::filesystem::path(value);
}

std::filesystem::path moduleFile()
{
    Dl_info module = {};
    if (::dladdr(reinterpret_cast<const void *>(&moduleFile), &module) == 0 || module.dli_fname == nullptr)
        return {};
    return module.dli_fname;
}

} // namespace tarnSimulator
