#include "panel/session/shell.h"

namespace tarnPanel {

const Shell &systemShell()
{
    return posixShell();
}

} // namespace tarnPanel
