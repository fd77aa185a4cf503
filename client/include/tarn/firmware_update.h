#pragma once

#include <tarn/firmware_name.h>
#include <tarn/firmware_result.h>

#include <QObject>
#include <QPointer>
#include <QStandardPaths>

#include <chrono>
#include <memory>
#include <optional>

namespace tarn {

class Client;
class UpdateSequence;
struct UpdateSetting;

struct FirmwareUpdateOptions
{
    // Where the service looks for the file: in the folder of the user at the console. A file from elsewhere
    // is copied there.
    QString downloadFolder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    // The version that the MCU must have afterwards, as the service gives it, such as "1.23". An EC update
    // has none.
    std::optional<QString> expectedVersion = {};
    // Leave out the checks of user, EC and accessory. For a service that this program's user has started with
    // -exec although somebody else is at the console, and for a service that cannot answer the questions.
    bool skipPrecautions = false;
    // How long to wait for each answer; nothing: as long as Client does for the command.
    std::optional<std::chrono::milliseconds> limit = {};
    // How the texts name the program, as in "run this program as that user".
    QString programName = QStringLiteral("this program");
};

// A whole firmware update: checks the file, puts it where the service looks, sends the requests one after the
// other, tells how far the service should be, and says what the end means for the device.
//
// Thread: the object lives on the thread of its client, which must be open. Other requests of that client
// wait behind the one that is on its way, up to 15 minutes. Reading and copying the file blocks nothing: it
// runs on a thread of the global QThreadPool. Whether the service has taken the file is looked up on the
// client's thread, and the copy is removed there: each may block where the file system is slow. Any slot may
// delete the object.
//
// The file: the service takes it out of the download folder, also when it lay there before; a file of another
// content under its name is not replaced. A copy that was made here is removed at the end, unless the service
// has taken it or may still take it: once the request that carries its name has been written, it stays until
// the answer comes or the service is gone.
//
// A lost connection: one that is lost between two requests is made again and the update goes on; it ends with
// NotSent when that takes longer than Client::send() waits. One that is lost before an answer ends the update
// with ServiceGone, even when the service is soon there again: the answer can come no more. When another
// client takes the answer, or this one is closed, the end is NoAnswer.
//
// The destructor sends nothing more, and finished() does not come. A request that has been written is carried
// out all the same, and the copy stays for it. A copy that is being made is finished and removed on its
// thread.
class FirmwareUpdate : public QObject
{
    Q_OBJECT

public:
    FirmwareUpdate(Client *client, FirmwareKind kind, QObject *parent = nullptr);
    // For tests of this library, with another plan or user.
    FirmwareUpdate(Client *client, const UpdateSetting &setting, QObject *parent = nullptr);
    ~FirmwareUpdate() override;

    // What the user should know before the start.
    [[nodiscard]] QString notice() const;

    // The result with which start() would end without a service: for a file that cannot be flashed, or
    // another user. Nothing when there is none. Reads the file and asks the system, so it may block where one
    // of them is slow.
    [[nodiscard]] std::optional<FirmwareResult> objection(
        const QString &file, const FirmwareUpdateOptions &options = {}) const;

    // Ends with one finished(), never before it returns. Does nothing while an update runs; afterwards the
    // next one may begin, also in a slot of finished().
    void start(const QString &file, const FirmwareUpdateOptions &options = {});
    // Stops waiting and sends nothing more: finished() with Abandoned, before this returns unless the file is
    // being copied. A request that has been written is carried out all the same, and the result says what
    // that means. When the client has the answer that ends the update already, the result is that of the
    // answer.
    void abandon();
    [[nodiscard]] bool isRunning() const;
    // Since started(); 0 before it and when no update runs.
    [[nodiscard]] std::chrono::milliseconds elapsed() const;

Q_SIGNALS:
    // The file lies in the download folder already, so the service takes the user's own file away. The path
    // is the system's own, for messages.
    void ownFileUsed(const QString &path);
    // The file is in place, and the first request follows.
    void started();
    // The request is about to be sent: the last moment at which abandon() surely keeps it from the service.
    // It may wait behind others of the client, or for a connection.
    void requestFollows(const QString &command);
    // What the service should be doing from now on, by its schedule, which begins when the request has been
    // written: the service sends nothing before its answer.
    void phaseChanged(const QString &text, std::chrono::milliseconds sinceStart);
    void finished(const tarn::FirmwareResult &result);

private:
    const QPointer<Client> client;
    const std::unique_ptr<const UpdateSetting> setting;
    // A child; null while no update runs.
    UpdateSequence *sequence = nullptr;
};

} // namespace tarn
