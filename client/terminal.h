#pragma once

namespace tarnClient {

// A person types the standard input, rather than a file or another program supplying it.
[[nodiscard]] bool inputIsTerminal();
// A person sees the error output as it is written, so that a line may be written over.
[[nodiscard]] bool errorsAreTerminal();

} // namespace tarnClient
