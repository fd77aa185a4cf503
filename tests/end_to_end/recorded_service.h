#pragma once

#include "device/recording/request_record.h"
#include "end_to_end/running_service.h"

#include <QString>

#include <functional>

namespace tarnTest {

// A service that records what goes over the ports of its EC, while what is done to it from outside is noted.
class RecordedService
{
public:
    RecordedService();

    [[nodiscard]] bool start();
    // Asks while the monitor holds the EC, so that the order of the accesses does not depend on chance; the
    // answer.
    QString ask(const char *command, const char *data = nullptr);
    // Waits until the monitor has begun to look at the accessory once more.
    [[nodiscard]] bool waitForHold(int boundMs = 20000);
    [[nodiscard]] bool waitForHolds(int count);
    // Ends the service; the recording, with what was done beside it. Empty when there is none.
    [[nodiscard]] QString finish();

    ServiceProcess service;
    ServiceClient client;

private:
    tarnRecording::RequestJournal journal;
};

// The recordings of an installation's function folder, the oldest first.
[[nodiscard]] QStringList recordingsIn(const ServiceProcess &service);

// Puts both files of a recording under another name.
[[nodiscard]] bool copyRecording(const QString &from, const QString &to);

} // namespace tarnTest
