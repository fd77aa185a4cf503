#pragma once

namespace tarnPlatform {

// How many clients may be connected at once. Where a process has only so many descriptors, some are kept
// back: a thread that finds none left for its event loop ends the process. Read when the pipe opens.
[[nodiscard]] int clientRoom();

} // namespace tarnPlatform
