#include "end_to_end/mcu_port.h"

#include "end_to_end/service_process.h"
#include "support/pipe_peer.h"

#include <QFileInfo>

namespace tarnTest {

McuPort::~McuPort()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    process.waitForFinished(5000);
}

bool McuPort::open(const ServiceProcess &service)
{
    process.setWorkingDirectory(service.path("."));
    process.start(builtProgram("tarnserial"), QStringList());
    const QString link = service.path("function/MCU/\\\\.\\COM1");
    return waitUntil([this, &link] { return QFileInfo(link).isSymLink() && process.canReadLine(); });
}

} // namespace tarnTest
