#pragma once

#include <QString>

#include <functional>

namespace tarnFirmwareUpdate {

// A file that was downloaded for an update, used with the rights of the account that has downloaded it. If
// that is the user at the console and not the account of the service, the file is looked for, read and
// deleted with that user's rights only, because a link in a user's folder must not lead the service to other
// files. Used on the thread that made it.
class Download
{
public:
    // Looks for the file in the download folder of the account that the service runs under. In the service
    // session, where no user downloads to that folder, looks in that of the user at the console as well.
    [[nodiscard]] static Download find(const QString &fileName);

    // Where the file is or would be; empty when there is no download folder.
    [[nodiscard]] const QString &path() const { return file; }
    [[nodiscard]] bool isFolderThere() const;
    // Overwrites the destination, with the service's own rights. Empty, or the error.
    [[nodiscard]] QString copyTo(const QString &destination) const;
    // Empty, or the error.
    [[nodiscard]] QString remove() const;

private:
    Download(QString path, bool isOfConsoleUser);
    [[nodiscard]] bool asOwner(const std::function<void()> &action) const;

    QString file;
    bool ofConsoleUser = false;
};

} // namespace tarnFirmwareUpdate
