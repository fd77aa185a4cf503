#include "checks.h"

namespace tarnctl {

namespace {

const QString ownVersion = QStringLiteral(TARNCTL_VERSION);

} // namespace

// The file may be newer than the process, which the log tells of.
Findings checkVersions(const Case &examined)
{
    const QString subject = QStringLiteral("version");
    const QString ofFile = examined.computer.fileVersion(examined.installation.program());
    QStringList seen;
    if (!ofFile.isEmpty())
        seen << QStringLiteral("program %1").arg(ofFile);
    if (examined.start) {
        seen << (examined.isStartOfProcess() ? QStringLiteral("running %1") : QStringLiteral("last run %1"))
                    .arg(examined.start->version);
    }
    if (seen.isEmpty()) {
        return {{Verdict::Unknown, subject, QStringLiteral("neither the program nor the log tells"),
            QStringLiteral("start the service")}};
    }
    const QString ofProcess = examined.isStartOfProcess() ? examined.start->version : QString();
    seen << QStringLiteral("tarnctl %1").arg(ownVersion);
    const QString text = seen.join(QStringLiteral(", "));
    if (!ofFile.isEmpty() && !ofProcess.isEmpty() && ofFile != ofProcess)
        return {{Verdict::Bad, subject, text, QStringLiteral("restart the service")}};
    const QString ofService = ofFile.isEmpty() ? ofProcess : ofFile;
    if (!ofService.isEmpty() && ofService != ownVersion)
        return {{Verdict::Bad, subject, text, QStringLiteral("use the tarnctl that came with the service")}};
    return {{Verdict::Good, subject, text}};
}

} // namespace tarnctl
