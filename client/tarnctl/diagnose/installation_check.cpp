#include "checks.h"

#include <QFileInfo>

namespace tarnctl {

// What the other lines look at.
Findings checkInstallation(const Case &examined)
{
    const QString subject = QStringLiteral("installation");
    const QString folder = examined.installation.folder();
    if (!QFileInfo(examined.installation.program()).isFile()) {
        return {{Verdict::Bad, subject, QStringLiteral("no TarnService in %1").arg(folder),
            QStringLiteral("use the tarnctl that lies beside it, or run the installer again")}};
    }
    // The installer removes both when it has ended.
    for (const char *leftover : {"update.new", "update.old"}) {
        const QString path = examined.installation.path(QLatin1String(leftover));
        if (QFileInfo::exists(path))
            return {{Verdict::Bad, subject, QStringLiteral("an update was interrupted: %1").arg(path),
                advice::reinstall}};
    }
    return {{Verdict::Good, subject, folder}};
}

} // namespace tarnctl
