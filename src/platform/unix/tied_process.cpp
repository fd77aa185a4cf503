#include "platform/tied_process.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace tarnPlatform {

// The kernel keeps the tie.
class ProcessTie
{ };

TiedProcess::TiedProcess()
{
    // In the child, before it becomes the program.
    setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) // it has ended before the kernel was told to watch it
            ::_exit(EXIT_FAILURE);
    });
}

TiedProcess::~TiedProcess() = default;

bool TiedProcess::startTied(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    return waitForStarted(-1);
}

} // namespace tarnPlatform
