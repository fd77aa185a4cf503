#pragma once

#include "service/qt_service.h"

#include <QCoreApplication>

#include <memory>

namespace tarnDeviceInfos {
class EcDirverReader;
}
namespace tarnFirmwareUpdate {
class LeftoverEcTool;
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
    ~TarnService() override;

protected:
    void start() override;
    void stop() override;
    // Pausing and resuming only log: the monitor and the pipe server go on.
    void pause() override;
    void resume() override;

private:
    int startupType = 0; // automatic
    tarnDeviceInfos::EcDirverReader *ecReader = nullptr;
    tarnPipeServer::TarnPipeServer *pipeServer = nullptr;
    std::unique_ptr<tarnFirmwareUpdate::LeftoverEcTool> leftoverEcTool;
};
