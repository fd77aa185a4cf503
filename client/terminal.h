#pragma once

namespace tarnClient {

// A person types the standard input, rather than a file or another program supplying it.
[[nodiscard]] bool inputIsTerminal();

} // namespace tarnClient
