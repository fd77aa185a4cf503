#include "panel/session/shell.h"

namespace tarnPanel {

const Shell &systemShell()
{
    return windowsShell();
}

} // namespace tarnPanel
