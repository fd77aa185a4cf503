#pragma once

#include <QObject>

namespace tarnPlatform {

// Tells when the system or the person at the terminal asks the process to end: SIGTERM and SIGINT, or the
// console's Ctrl+C, Ctrl+Break and closing. The signal comes on the thread of the object, which needs an
// event loop; a request that arrived earlier is remembered. One object a process.
class StopRequests : public QObject
{
    Q_OBJECT

public:
    StopRequests();
    ~StopRequests() override;

    [[nodiscard]] bool isRequested() const;

Q_SIGNALS:
    void stopRequested();
};

} // namespace tarnPlatform
