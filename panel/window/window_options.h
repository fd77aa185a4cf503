#pragma once

#include <QString>

namespace tarnPanel {

struct WindowOptions
{
    // Empty: chosen by stateFileOf().
    QString stateFile;
    QString pipeName;
    // Where the programs lie. The service there is started when none runs, unless `startsService` is false.
    QString folder;
    bool startsService = true;
};

// The folder with the programs that the window may start; empty: it starts none. The service has the usual
// pipe only.
[[nodiscard]] QString startFolder(const WindowOptions &options);

// The simulated computer that the window shows: the named one, the one that the environment names, or that of
// the service beside this program if the window may start it or it has run before. Otherwise empty: the one
// that tarnsim would choose.
[[nodiscard]] QString stateFileOf(const WindowOptions &options);

} // namespace tarnPanel
