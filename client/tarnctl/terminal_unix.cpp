#include "terminal.h"

#include <unistd.h>

namespace tarnctl {

bool inputIsTerminal()
{
    return isatty(STDIN_FILENO) == 1;
}

bool errorsAreTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

} // namespace tarnctl
