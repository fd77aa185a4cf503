#pragma once

namespace tarnctl {

// True when the standard input is a terminal, not a file or a pipe.
[[nodiscard]] bool inputIsTerminal();
// True when the error output is a terminal, on which a line may be overwritten.
[[nodiscard]] bool errorsAreTerminal();

} // namespace tarnctl
