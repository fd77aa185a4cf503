#include "platform/tied_process.h"

#include "platform/windows/launch_job.h"

namespace tarnPlatform {

class ProcessTie
{
public:
    LaunchJob job;
};

TiedProcess::TiedProcess()
    : tie(std::make_unique<ProcessTie>())
{ }

TiedProcess::~TiedProcess() = default;

bool TiedProcess::startTied(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    if (!waitForStarted(-1))
        return false;
    const UniqueHandle started(
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(processId())));
    tie->job.take(started.get());
    return true;
}

} // namespace tarnPlatform
