#pragma once

#include "firmware_name.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace tarnClient {

// A firmware file as it lies in the download folder, from where the service takes it away. A file that lies
// elsewhere is copied there, and the copy goes with this object unless the service has taken it.
class StagedFirmware
{
public:
    explicit StagedFirmware(QString downloadFolder);
    ~StagedFirmware();
    StagedFirmware(const StagedFirmware &) = delete;
    StagedFirmware &operator=(const StagedFirmware &) = delete;

    // What is wrong with the file, with what to do about it; nothing when it can be flashed.
    [[nodiscard]] static std::optional<QString> objection(const QString &file, FirmwareKind kind);
    // Puts a file without objection in place; says why when that cannot be done.
    [[nodiscard]] std::optional<QString> place(const QString &file);
    // What the service is told.
    [[nodiscard]] QString name() const;
    // Where the file lies for the service.
    [[nodiscard]] QString path() const;
    // False when it was there already: then the service takes the user's own file.
    [[nodiscard]] bool isCopy() const;
    // The file has not been taken.
    [[nodiscard]] bool isThere() const;
    // The copy stays, because the service may still take it.
    void leave();

private:
    [[nodiscard]] std::optional<QString> copy(const QString &file);
    void withdraw();

    QString folder;
    QString fileName;
    bool copied = false;
    // The copy as it was made: another file of its name, put there since, is not removed.
    qint64 copySize = 0;
    QDateTime copyTime;
};

} // namespace tarnClient
