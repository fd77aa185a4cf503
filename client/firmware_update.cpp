#include "tarn/firmware_update.h"

#include "tarn/client.h"
#include "update_objection.h"
#include "update_sequence.h"
#include "update_setting.h"

#include <utility>

namespace tarn {

FirmwareUpdate::FirmwareUpdate(Client *tarnClient, FirmwareKind kind, QObject *parent)
    : FirmwareUpdate(tarnClient, UpdateSetting {updatePlan(kind)}, parent)
{ }

FirmwareUpdate::FirmwareUpdate(Client *tarnClient, const UpdateSetting &updateSetting, QObject *parent)
    : QObject(parent)
    , client(tarnClient)
    , setting(std::make_unique<const UpdateSetting>(updateSetting))
{ }

// The sequence ends with its parent.
FirmwareUpdate::~FirmwareUpdate() = default;

QString FirmwareUpdate::notice() const
{
    return setting->plan.notice;
}

std::optional<FirmwareResult> FirmwareUpdate::objection(
    const QString &file, const FirmwareUpdateOptions &options) const
{
    return updateObjection(file, options, *setting);
}

void FirmwareUpdate::start(const QString &file, const FirmwareUpdateOptions &options)
{
    if (isRunning())
        return;
    sequence = new UpdateSequence(client, *setting, options, this);
    connect(sequence, &UpdateSequence::ownFileUsed, this, &FirmwareUpdate::ownFileUsed);
    connect(sequence, &UpdateSequence::started, this, &FirmwareUpdate::started);
    connect(sequence, &UpdateSequence::requestFollows, this, &FirmwareUpdate::requestFollows);
    connect(sequence, &UpdateSequence::phaseChanged, this, &FirmwareUpdate::phaseChanged);
    connect(sequence, &UpdateSequence::finished, this, [this](const FirmwareResult &result) {
        std::exchange(sequence, nullptr)->deleteLater();
        emit finished(result);
    });
    sequence->start(file);
}

void FirmwareUpdate::abandon()
{
    if (isRunning())
        sequence->abandon();
}

bool FirmwareUpdate::isRunning() const
{
    return sequence != nullptr;
}

std::chrono::milliseconds FirmwareUpdate::elapsed() const
{
    return isRunning() ? sequence->elapsed() : std::chrono::milliseconds(0);
}

} // namespace tarn
