#pragma once

#include <string_view>

namespace tarnGui {

// Writes ASCII text to the standard error output, or to the console the program was started from: a program
// with windows has no console of its own.
void writeError(std::wstring_view text);

} // namespace tarnGui
