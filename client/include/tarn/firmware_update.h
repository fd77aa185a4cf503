#pragma once

#include "console_user.h"
#include "interrupt_poll.h"
#include "session.h"
#include "staged_firmware.h"
#include "update_plan.h"
#include "update_progress.h"

#include <QElapsedTimer>

namespace tarnClient {

// Where the service is expected to look for the file.
struct DownloadPlace
{
    QString folder;
    std::optional<OtherUser> otherUser {};
};

// A whole firmware update: puts the file where the service looks, sends the plan's requests one after the
// other, and reports the result and what to do next.
class FirmwareUpdate : public Session
{
    Q_OBJECT

public:
    FirmwareUpdate(
        const ToolOptions &options, ToolStreams &streams, const UpdatePlan &plan, const DownloadPlace &place);

    [[nodiscard]] ExitCode run(const QString &file);

private:
    [[nodiscard]] bool placeFile(const QString &file);
    void beginStep();
    void sendRequest();
    void handleDocument(const QByteArray &bytes);
    void handleAnswer(const Message &answer);
    void handleExpiry();
    void handleServiceGone();
    void handleInterrupt();
    void showProgress();

    [[nodiscard]] bool asksAgain() const;

    void endWell(const Message &answer);
    void endFlashed(const QString &version);
    void endRefused(const Message &answer);
    void endUnfinished(const QString &reason);
    void end(ExitCode code, const QString &text);

    [[nodiscard]] const UpdateStep &step() const;
    [[nodiscard]] std::chrono::milliseconds elapsed() const;

    const UpdatePlan &plan;
    const std::optional<OtherUser> otherUser;
    StagedFirmware firmware;
    UpdateProgress progress;
    InterruptPoll interrupt;
    QTimer progressTimer;
    QElapsedTimer clock;
    std::size_t stepIndex = 0;
    std::chrono::milliseconds stepBegan {0};
    QString tag;
    // The MCU's version before the update; nothing when it has not been asked for.
    std::optional<QString> versionBefore;
};

} // namespace tarnClient
