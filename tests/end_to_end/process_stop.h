#pragma once

class QProcess;

namespace tarnTest {

// Called before the start: makes the process one that can be asked to stop on its own.
void prepareForStop(QProcess &process);
// Asks as the system or a terminal does: SIGTERM, or Ctrl+Break on the console.
void requestStop(QProcess &process);
// Asks as a person at the terminal does: SIGINT, or Ctrl+Break on the console.
void requestInterrupt(QProcess &process);

} // namespace tarnTest
