#include "platform/process_exit.h"

#include <cstdlib>
#include <windows.h>

namespace tarnPlatform {

// An ordinary exit takes the loader's lock, which a thread that is stuck in loading or unloading a library
// (the monitor reloads the port library) never gives back.
void exitAtOnce(int code)
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    std::_Exit(code); // not reached
}

} // namespace tarnPlatform
