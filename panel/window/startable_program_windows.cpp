#include "panel/window/started_program.h"

namespace tarnPanel {

// A program without windows can only be killed by another one here, and the port library beside the service
// may be the real one.
QString startableProgram(const QString &, const QString &)
{
    return {};
}

} // namespace tarnPanel
