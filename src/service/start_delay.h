#pragma once

// Gives the rest of the system time to start, and handles events meanwhile. False when the process was asked
// to end.
[[nodiscard]] bool waitForSystem();
