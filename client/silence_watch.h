#pragma once

#include "client_times.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

namespace tarn {

// When the service is to be asked whether it still talks to this client: after a quiet time, and not more
// often, while somebody listens or a request has got no answer; or when it is demanded.
class SilenceWatch : public QObject
{
    Q_OBJECT

public:
    SilenceWatch(const ClientTimes &clientTimes, std::function<bool()> somebodyListens, QObject *parent);

    // A connection has been opened.
    void begin();
    // The connection has ended.
    void stop();
    void noteListeners();
    // The service has written to this client.
    void noteMessage();
    // Either the request waits for the EC, or the service has fallen silent.
    void noteUnanswered();
    // Whatever comes before it.
    void demand();
    // True when the question is to be written now; it counts as written.
    [[nodiscard]] bool takeDue();

signals:
    void due();

private:
    void handleQuietEnd();

    const ClientTimes times;
    const std::function<bool()> isListened;
    QTimer timer;
    QElapsedTimer sinceAsked;
    bool isDemanded = false;
    bool isDue = false;
    // The question is to be asked although nobody listens.
    bool isOwed = false;
};

} // namespace tarn
