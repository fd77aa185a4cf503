#pragma once

class QProcess;

namespace tarnPlatform {

// Waits for the end of a process that has been started by this thread; so long at most, -1: for ever. False
// when it still runs. Events of the thread may be handled meanwhile.
bool waitForEnd(QProcess &process, int milliseconds = -1);

} // namespace tarnPlatform
