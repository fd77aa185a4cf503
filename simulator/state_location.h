#pragma once

#include <filesystem>
#include <optional>

// Where the state file of the simulated computer lies.
namespace tarnSimulator {

inline constexpr char stateFileName[] = "simulated_computer.state";
inline constexpr char stateFileVariable[] = "TARN_SIMULATOR_STATE";

// The file that the environment names; empty when it names none.
[[nodiscard]] std::optional<std::filesystem::path> stateFileFromEnvironment();

// For code in a library: the file that the environment names, else the one beside the library. Absolute,
// because the current directory may change later.
[[nodiscard]] std::filesystem::path stateFileOfLibrary();

// File of the program or library that holds this code, as it was loaded.
[[nodiscard]] std::filesystem::path moduleFile();

} // namespace tarnSimulator
