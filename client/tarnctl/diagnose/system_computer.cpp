#include "system_computer.h"

#include "platform/processes.h"

#include <QLibraryInfo>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QSysInfo>

namespace tarnctl {

std::optional<QList<TimedProgram>> SystemComputer::programsCalled(const QString &fileName)
{
    QList<TimedProgram> programs;
    for (const tarnPlatform::RunningProgram &program :
        tarnPlatform::ProcessList::system().programsCalled(fileName)) {
        if (program.processId == 0)
            return std::nullopt;
        programs << TimedProgram {program.path, program.processId, startOf(program.processId)};
    }
    return programs;
}

std::optional<qint64> SystemComputer::freeBytes(const QString &folder)
{
    const qint64 bytes = QStorageInfo(folder).bytesAvailable();
    return bytes < 0 ? std::nullopt : std::optional(bytes);
}

QStringList SystemComputer::downloadFolders()
{
    const QString own = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return own.isEmpty() ? QStringList() : QStringList(own);
}

QStringList SystemComputer::versions()
{
    return {
        QStringLiteral("system: ") + QSysInfo::prettyProductName(),
        QStringLiteral("kernel: %1 %2").arg(QSysInfo::kernelType(), QSysInfo::kernelVersion()),
        QStringLiteral("processor: ") + QSysInfo::currentCpuArchitecture(),
        QStringLiteral("Qt: ") + QLibraryInfo::version().toString(),
        QStringLiteral("tarnctl: " TARNCTL_VERSION),
    };
}

} // namespace tarnctl
