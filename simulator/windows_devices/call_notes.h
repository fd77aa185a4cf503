#pragma once

#include <string>
#include <windows.h>

namespace tarnSimulator {

// Writes a line into calls.txt beside the program that has loaded this library, for tests, which have no
// other way to see the program's calls of the system.
void noteCall(const std::string &line);

// The same for handles that the program gets and must close: "opened KIND", "closed KIND".
void noteOpened(HANDLE handle, const char *kind);
void noteClosed(HANDLE handle);
[[nodiscard]] bool isOpen(HANDLE handle, const char *kind);

[[nodiscard]] std::string utf8(const wchar_t *text); // "-" for none

} // namespace tarnSimulator
