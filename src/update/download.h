#pragma once

#include <QString>

#include <functional>

namespace tarnFirmwareUpdate {

// A file that was downloaded for an update, with the rights of whoever has downloaded it. Where that is the
// user at the console and not the account of the service, only what that user may see, read and delete is
// looked at, read and deleted: a link in the folder of a user must not lead a service anywhere. Used on the
// thread that made it.
class Download
{
public:
    // Looks for the file in the download folder of the account that the service runs under. The account of a
    // service has one that nobody downloads to: then it is looked for in that of the user at the console.
    [[nodiscard]] static Download find(const QString &fileName);

    // Where the file is or would be; empty when there is no download folder.
    [[nodiscard]] const QString &path() const { return file; }
    [[nodiscard]] bool isFolderThere() const;
    // Overwrites the destination; the service's own rights decide there. Empty, or what went wrong.
    [[nodiscard]] QString copyTo(const QString &destination) const;
    // Empty, or what went wrong.
    [[nodiscard]] QString remove() const;

private:
    Download(QString path, bool isOfConsoleUser);
    [[nodiscard]] bool asOwner(const std::function<void()> &action) const;

    QString file;
    bool ofConsoleUser = false;
};

} // namespace tarnFirmwareUpdate
