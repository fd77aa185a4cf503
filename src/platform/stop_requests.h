#pragma once

#include <QObject>

namespace tarnPlatform {

// Tells when the system or the person at the terminal asks the process to end: SIGTERM, SIGINT and SIGHUP, or
// the console's Ctrl+C, Ctrl+Break and closing. The signal comes on the thread that made the object, which
// needs an event loop. From the first use on such a request no longer ends the process by itself.
class StopRequests : public QObject
{
    Q_OBJECT

public:
    // The one object of the process, deliberately never destroyed: a request may come until the very end.
    static StopRequests &ofProcess();

    // True from the first request on.
    [[nodiscard]] bool isRequested() const;

Q_SIGNALS:
    void stopRequested();

private:
    StopRequests();
};

} // namespace tarnPlatform
