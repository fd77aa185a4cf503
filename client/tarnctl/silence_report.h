#pragma once

#include <QElapsedTimer>
#include <QString>

#include <chrono>
#include <optional>

namespace tarnctl {

// What watch says about a service that falls silent. After it has said that this happens again and again, it
// says nothing more until the service has gone, has talked for a long time, or the user has asked for a new
// connection.
class SilenceReport
{
public:
    explicit SilenceReport(std::chrono::milliseconds longTalk);

    void noteConnection();
    void forget();
    // Nothing when it has been said.
    [[nodiscard]] std::optional<QString> takeText(bool isRepeated);

private:
    const std::chrono::milliseconds longTalk;
    QElapsedTimer sinceConnected;
    bool isTold = false;
};

} // namespace tarnctl
