#include "simulator/state_location.h"

namespace tarnSimulator {

std::filesystem::path stateFileOfLibrary()
{
    const auto named = stateFileFromEnvironment();
    const std::filesystem::path file = named ? *named : moduleFile().parent_path() / stateFileName;
    std::error_code error;
    const std::filesystem::path absoluteFile = std::filesystem::absolute(file, error);
    return error ? file : absoluteFile;
}

} // namespace tarnSimulator
