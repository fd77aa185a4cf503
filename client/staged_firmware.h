#pragma once

#include "tarn/firmware_name.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace tarn {

// A firmware file in the download folder, out of which the service moves it. A file from elsewhere is copied
// there; the destructor removes the copy unless the service has taken it.
class StagedFirmware
{
public:
    explicit StagedFirmware(QString downloadFolder);
    ~StagedFirmware();
    StagedFirmware(const StagedFirmware &) = delete;
    StagedFirmware &operator=(const StagedFirmware &) = delete;

    // What is wrong with the file and what to do about it; nothing when it can be flashed.
    [[nodiscard]] static std::optional<QString> objection(const QString &file, FirmwareKind kind);
    // Puts a file without objection in place; says why when that cannot be done.
    [[nodiscard]] std::optional<QString> place(const QString &file);
    // The bare file name, as the request carries it.
    [[nodiscard]] QString name() const;
    // Where the service finds the file.
    [[nodiscard]] QString path() const;
    // False when it was there already: then the service takes the user's own file.
    [[nodiscard]] bool isCopy() const;
    // False once the service has taken the file.
    [[nodiscard]] bool isThere() const;
    // Makes the destructor keep the copy, because the service may still take it.
    void leave();

private:
    [[nodiscard]] std::optional<QString> copy(const QString &file);
    void withdraw();

    QString folder;
    QString fileName;
    bool copied = false;
    // Size and time of the copy when it was made: another file put there since under its name is not removed.
    qint64 copySize = 0;
    QDateTime copyTime;
};

} // namespace tarn
