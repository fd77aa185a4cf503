#include "checks.h"

#include "client/console_user.h"

#include <QFileInfo>

namespace tarnctl {

namespace {

// On a computer without users at a screen there may well be none.
Finding folderFinding(const Case &examined, const QString &subject, const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.isDir()) {
        const bool isWindows = examined.service.known != ServiceEntry::Known::NoManager;
        return {isWindows ? Verdict::Bad : Verdict::Unknown, subject,
            QStringLiteral("not there: %1").arg(folder),
            QStringLiteral("make it; firmware for an update has to be put there")};
    }
    if (!info.isReadable())
        return {Verdict::Unknown, subject, QStringLiteral("%1 may not be read by this user").arg(folder),
            advice::asAdministrator};
    return {Verdict::Good, subject, QStringLiteral("%1, of this user").arg(folder)};
}

} // namespace

// The service looks for firmware there.
Findings checkDownloads(const Case &examined)
{
    const QString subject = QStringLiteral("download folder");
    if (const auto other = tarn::otherUserAtConsole()) {
        return {{Verdict::Unknown, subject,
            QStringLiteral("that of %1, who is at the console; this is %2").arg(other->atConsole, other->own),
            QStringLiteral("run tarnctl as the user at the console")}};
    }
    Findings findings;
    for (const QString &folder : examined.computer.downloadFolders())
        findings << folderFinding(examined, subject, folder);
    if (findings.isEmpty())
        return {
            {Verdict::Unknown, subject, QStringLiteral("the system does not tell"), advice::seeOperations}};
    return findings;
}

} // namespace tarnctl
