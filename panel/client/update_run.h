#pragma once

#include <tarn/firmware_update.h>

#include <QObject>

#include <functional>
#include <memory>

namespace tarnPanel {

class ServiceLink;

// Makes the update of a kind; without a client one that is only asked for its notice and its objection.
using UpdateMaker = std::function<std::unique_ptr<tarn::FirmwareUpdate>(tarn::Client *, tarn::FirmwareKind)>;

// One firmware update after the other, and what the panel knows about the one that runs.
class UpdateRun : public QObject
{
    Q_OBJECT

public:
    struct Wish
    {
        tarn::FirmwareKind kind = tarn::FirmwareKind::Mcu;
        QString file;
        QString expectedVersion;
    };

    // An empty `downloadFolder`: that of the user.
    UpdateRun(ServiceLink &link, UpdateMaker maker, const QString &downloadFolder, QObject *parent = nullptr);

    [[nodiscard]] QString notice(tarn::FirmwareKind kind) const;
    // Looks on another thread for what speaks against the file, and calls back with it unless `context` is
    // gone; empty: nothing.
    void look(const Wish &wish, QObject *context, const std::function<void(const QString &)> &use) const;

    void start(const Wish &wish);
    void abandon();
    [[nodiscard]] bool isRunning() const { return update && update->isRunning(); }
    [[nodiscard]] QString phase() const { return phaseText; }
    [[nodiscard]] std::chrono::milliseconds elapsed() const;

Q_SIGNALS:
    void changed();
    void remarked(const QString &text);
    void finished(tarn::FirmwareKind kind, const tarn::FirmwareResult &result);

private:
    void finish(tarn::FirmwareKind kind, const tarn::FirmwareResult &result);
    [[nodiscard]] tarn::FirmwareUpdateOptions optionsOf(const Wish &wish) const;

    ServiceLink &link;
    UpdateMaker makeUpdate;
    QString downloadFolder;
    std::unique_ptr<tarn::FirmwareUpdate> update;
    QString phaseText;
};

} // namespace tarnPanel
