#pragma once

#include "end_to_end/service_process.h"

#include <QString>
#include <QStringList>

#include <span>

namespace tarnLoad {

// A setting of a client that has to outlive the service, and the place where it is stored.
struct KeptSetting
{
    const char *name;
    const char *command; // two settings may be set by one command
    const char *accessory; // the one that is needed, in the words of a notification; null: none
    bool isInFile;
    std::span<const char *const> values; // of the request
    // What is kept now, in the words of the request; empty when nothing was set yet. What cannot be
    // understood comes back as it is, and is none of the values.
    QString (*kept)(tarnTest::ServiceProcess &service);
};

[[nodiscard]] std::span<const KeptSetting> keptSettings();

// The settings file of the EC tool as it has to be for this firmware file.
[[nodiscard]] QByteArray ecToolSettings(const QString &firmware);
// The firmware files that the table's requests name are there to be taken.
void offerFirmware(tarnTest::ServiceProcess &service);
// Each is still to be taken, or has been taken in full.
[[nodiscard]] bool isFirmwareSafe(tarnTest::ServiceProcess &service);

// Limits in watts and fan mode that the EC has been told, as "45/55/75/1".
[[nodiscard]] QString limitsInForce(tarnTest::ServiceProcess &service);
// The same as they follow from a profile with the supply that the simulated computer starts with.
[[nodiscard]] QString limitsOfProfile(const QString &profile);

} // namespace tarnLoad
