#include "checks.h"

namespace tarnctl {

namespace {

constexpr qint64 mib = qint64(1024) * 1024;
constexpr qint64 fewestFreeMib = 100; // a log, a firmware, and what other programs need

} // namespace

Findings checkDisk(const Case &examined)
{
    const QString subject = QStringLiteral("free disk");
    const auto freeBytes = examined.computer.freeBytes(examined.installation.folder());
    if (!freeBytes)
        return {{Verdict::Unknown, subject, QStringLiteral("the system does not tell"),
            QStringLiteral("look whether the folder is still there")}};
    const qint64 freeMib = *freeBytes / mib;
    const QString text = QStringLiteral("%1 MiB at %2").arg(freeMib).arg(examined.installation.folder());
    if (freeMib < fewestFreeMib)
        return {
            {Verdict::Bad, subject, text, QStringLiteral("make room: at least %1 MiB").arg(fewestFreeMib)}};
    return {{Verdict::Good, subject, text}};
}

} // namespace tarnctl
