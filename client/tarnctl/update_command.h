#pragma once

#include "client/update_setting.h"
#include "client_task.h"
#include "interrupt_poll.h"
#include "tarn/firmware_update.h"
#include "update_progress.h"

namespace tarnctl {

// update-mcu and update-ec: shows a tarn::FirmwareUpdate to the user.
class UpdateCommand : public ClientTask
{
    Q_OBJECT

public:
    // The service is expected to look for the file in that folder.
    UpdateCommand(const ToolOptions &options, ToolStreams &streams, const tarn::UpdateSetting &setting,
        const QString &downloadFolder, const tarn::ClientTimes &times = tarn::ClientTimes());

    [[nodiscard]] ExitCode run(const QString &file);

private:
    [[nodiscard]] bool connectClient();
    void remark(const QString &text) override;
    void warnOfOwnFile(const QString &path);
    void showStart();
    void heedInterrupt();
    void showPhase(const QString &text, std::chrono::milliseconds now);
    void end(const tarn::FirmwareResult &result);

    // In the words of the tool, with what belongs to it and not to every program.
    [[nodiscard]] QString failureText(const tarn::FirmwareResult &result) const;
    [[nodiscard]] QString whatHappened(const tarn::FirmwareResult &result) const;
    [[nodiscard]] static QString ownAdvice(tarn::FirmwareOutcome outcome);
    [[nodiscard]] QString otherUserText(const tarn::FirmwareResult &result) const;

    const tarn::UpdateSetting setting;
    tarn::FirmwareUpdate update;
    tarn::FirmwareUpdateOptions updateOptions;
    UpdateProgress progress;
    InterruptPoll interrupt;
    QTimer progressTimer;
    QString fileName;
};

} // namespace tarnctl
