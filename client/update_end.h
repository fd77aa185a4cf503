#pragma once

#include "staged_firmware.h"
#include "tarn/firmware_update.h"
#include "tarn/reply.h"
#include "update_plan.h"

namespace tarn {

// The result of an update that ends at one of its steps: what the end means for the device.
class UpdateEnd
{
public:
    // All must outlive the object.
    UpdateEnd(const UpdatePlan &plan, const UpdateStep &step, const FirmwareUpdateOptions &options,
        const StagedFirmware &firmware);

    // The service calls the update done.
    [[nodiscard]] FirmwareResult done(const Reply &reply, const std::optional<QString> &versionBefore) const;
    // The answer is not the wanted one.
    [[nodiscard]] FirmwareResult refused(const Reply &reply) const;
    [[nodiscard]] FirmwareResult noAnswer(const Reply &reply) const;
    [[nodiscard]] FirmwareResult abandoned(bool wasSent) const;
    // The connection ended after the request was written.
    [[nodiscard]] FirmwareResult serviceGone() const;
    // The request was not written.
    [[nodiscard]] FirmwareResult notSent(const QString &reason) const;

private:
    [[nodiscard]] FirmwareResult made(FirmwareOutcome outcome, bool isUntouched) const;
    // The request was written, and nobody waits for the answer any more.
    [[nodiscard]] FirmwareResult goingOn(FirmwareOutcome outcome, const QString &text) const;
    void judgeVersion(FirmwareResult &result) const;
    [[nodiscard]] QString filledIn(QLatin1StringView text, const QString &value) const;

    const UpdatePlan &plan;
    const UpdateStep &step;
    const FirmwareUpdateOptions &options;
    const StagedFirmware &firmware;
};

} // namespace tarn
