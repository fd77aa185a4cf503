#pragma once

#include <QTimer>

namespace tarnFirmwareUpdate {

// At the start of the service: an EC tool that an earlier run has left behind flashes the EC and must have it
// to itself. If one runs, the object takes ecAccessMutex before any other object does, so that all others
// wait as they do for any update, and releases it when the tool has ended. Everything that needs no EC goes
// on. Made on a thread with an event loop; a stop ends the wait by ending the loop.
class LeftoverEcTool : public QObject
{
    Q_OBJECT

public:
    // Looks whether one runs.
    LeftoverEcTool();

    [[nodiscard]] bool isAwaited() const { return awaited; }
    // Called every second.
    void look();

private:
    QTimer timer;
    bool awaited = false;
    int looks = 0;
};

} // namespace tarnFirmwareUpdate
