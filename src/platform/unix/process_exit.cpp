#include "platform/process_exit.h"

#include <cstdlib>

namespace tarnPlatform {

void exitAtOnce(int code)
{
    std::_Exit(code);
}

} // namespace tarnPlatform
