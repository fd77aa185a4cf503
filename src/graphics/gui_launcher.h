#pragma once

#include <QString>

namespace tarnAccessoryManager {

// Shows the user one window of the GUI program; 1 when the user clicked yes there, else 0, failures included.
// From the service session it returns when the window has been closed. From a user's session only the
// question "--disengaged-graphics" is waited for, for at most 30 s. No window is opened once the process
// ends.
int launchGuiProgram(const QString &programSwitch);

} // namespace tarnAccessoryManager
