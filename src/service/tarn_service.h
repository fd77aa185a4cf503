#pragma once

#include "service/qt_service.h"

#include <QCoreApplication>

namespace tarnDeviceInfos {
class EcDirverReader;
}
namespace tarnPipeServer {
class TarnPipeServer;
}

// The service: creates the long-lived objects in their order and runs the accessory monitor. All operations
// are called on the application thread.
class TarnService : public QtService<QCoreApplication>
{
public:
    TarnService(int argc, char **argv);

protected:
    void start() override;
    void stop() override;
    // Pausing deliberately leaves the monitor and the pipe server at work.
    void pause() override;
    void resume() override;

private:
    int startupType = 0; // automatic
    tarnDeviceInfos::EcDirverReader *ecReader = nullptr;
    tarnPipeServer::TarnPipeServer *pipeServer = nullptr;
};
