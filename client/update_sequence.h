#pragma once

#include "staged_firmware.h"
#include "tarn/client.h"
#include "tarn/firmware_update.h"
#include "update_end.h"
#include "update_setting.h"

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace tarn {

// One run of a FirmwareUpdate: puts the file in place on another thread, sends the plan's requests one after
// the other, and finishes once. A slot of any signal may delete it.
class UpdateSequence : public QObject
{
    Q_OBJECT

public:
    UpdateSequence(
        Client *client, const UpdateSetting &setting, const FirmwareUpdateOptions &options, QObject *parent);
    // Keeps the copy that the service may still take, and removes any other.
    ~UpdateSequence() override;

    void start(const QString &file);
    void abandon();
    [[nodiscard]] std::chrono::milliseconds elapsed() const;

signals:
    void ownFileUsed(const QString &path);
    void started();
    void requestFollows(const QString &command);
    void phaseChanged(const QString &text, std::chrono::milliseconds sinceStart);
    void finished(const tarn::FirmwareResult &result);

private:
    void handleStaged();
    void beginStep();
    void sendRequest();
    void noteProgress(int value);
    void handleReply();
    void handleAnswer(const Reply &answer);
    void askAgain();
    void showPhase();
    void endGoingOn(const FirmwareResult &result);
    void end(FirmwareResult result);

    [[nodiscard]] bool stillRunsAfter(const std::function<void()> &emission);
    [[nodiscard]] std::chrono::milliseconds sinceStepBegan() const;
    [[nodiscard]] bool asksAgain() const;
    [[nodiscard]] bool isSent() const;
    [[nodiscard]] bool isGoingOn() const;
    [[nodiscard]] const UpdateStep &step() const;
    [[nodiscard]] UpdateEnd ending() const;

    const QPointer<Client> client;
    const UpdateSetting setting;
    const FirmwareUpdateOptions options;
    // Shared with the thread that puts the file in place.
    std::shared_ptr<StagedFirmware> firmware;
    QFutureWatcher<std::optional<FirmwareResult>> staging;
    QFutureWatcher<Reply> reply;
    QTimer phaseTimer;
    QTimer askingTimer;
    QElapsedTimer clock;
    std::size_t stepIndex = 0;
    // When this step's request was written, for the first time if it is repeated.
    std::optional<std::chrono::milliseconds> stepBegan;
    const UpdatePhase *shownPhase = nullptr;
    // The MCU's version before the update; nothing when it has not been asked for.
    std::optional<QString> versionBefore;
    // This step's request has been handed to the client.
    bool hasAsked = false;
    bool isGivenUp = false;
    bool isOver = false;
};

} // namespace tarn
