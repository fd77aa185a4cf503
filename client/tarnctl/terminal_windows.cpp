#include "terminal.h"

#include <cstdio>
#include <io.h>

namespace tarnctl {

bool inputIsTerminal()
{
    return _isatty(_fileno(stdin)) != 0;
}

bool errorsAreTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

} // namespace tarnctl
