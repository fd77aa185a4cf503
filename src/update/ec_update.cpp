#include "platform/files.h"
#include "platform/paths.h"
#include "platform/process_end.h"
#include "update/ec_reservation.h"
#include "update/ec_settings.h"
#include "update/firmware_file_name.h"
#include "update/firmware_updater.h"
#include "update/tool_run.h"

#include <QDebug>
#include <QFile>
#include <QProcess>

#include <fstream>

namespace tarnFirmwareUpdate {
namespace {

using tarnPlatform::path::ecSettings;
using tarnPlatform::path::newEcSettings;

// Lines end at "\n", so a "\r" before it belongs to its line and goes when the line is replaced; the tool
// reads both. Every line that is written gets its end, the last one too. False when reading or writing
// failed.
bool rewrite(std::istream &from, std::ostream &to, const std::string &binName)
{
    const auto binNameLine = [&binName] {
        return loggedBinNameLine([&binName] { return "BinName=" + binName; });
    };
    for (std::string line; std::getline(from, line);)
        to << settingsLine(line, binNameLine) << '\n';
    to.flush();
    return !from.bad() && to.good();
}

} // namespace

bool FirmwareUpdater::modifyEcIniFile(const std::string &iniPath, const std::string &binName)
{
    qDebug() << "modifyEcIniFile Enter |";
    const QString name = QString::fromLocal8Bit(binName.c_str(), static_cast<qsizetype>(binName.size()));
    if (!isSafeFirmwareName(name)) {
        qWarning() << "Not a plain name of a firmware file:" << name;
        return false;
    }
    std::ifstream from(iniPath, std::ios::binary);
    std::ofstream to;
    if (from.is_open())
        to.open(newEcSettings.toStdString(), std::ios::binary | std::ios::trunc);
    if (!from.is_open() || !to.is_open()) {
        qDebug() << "Error opening files!";
        return false;
    }
    const bool written = rewrite(from, to, binName);
    from.close();
    to.close();
    const QString target = QString::fromLocal8Bit(iniPath.c_str(), static_cast<qsizetype>(iniPath.size()));
    // The old settings go only when the new ones are complete.
    const bool safe = written && tarnPlatform::flushToDisk(newEcSettings);
    if (!written || !tarnPlatform::replaceFile(newEcSettings, target)) {
        qWarning() << "The settings of the EC tool cannot be replaced:" << target;
        QFile::remove(newEcSettings);
        return false;
    }
    if (!safe)
        qWarning() << "The settings of the EC tool may not be on the disk yet:" << target;
    qDebug() << "modifyEcIniFile Leave |";
    return true;
}

bool FirmwareUpdater::updateEc(const QString &fileName)
{
    const QMutexLocker locker(&ecUpdateMutex);
    const bool isToolRun = reserveAndRunEcTool(fileName);
    markEcUpdateOver(); // whatever the result
    return isToolRun;
}

bool FirmwareUpdater::reserveAndRunEcTool(const QString &fileName)
{
    // An EC tool that an earlier run of the service has left behind still needs its settings and its file.
    if (isToolLeftRunning())
        return false;
    if (!modifyEcIniFile(ecSettings.toStdString(), fileName.toLocal8Bit().toStdString())) {
        qDebug() << "write uiset.ini file failed!";
        return false;
    }
    if (copyEcFile(fileName) != 0)
        return false;
    // A tool that is started while the process ends would flash an EC that other threads still talk to.
    if (!reserveEcForUpdate() || tarnPlatform::isProcessEnding())
        return false;
    ecUpdate();
    return true;
}

void FirmwareUpdater::ecUpdate()
{
    qDebug() << "ecUpdate Enter |";
    auto *ecTool = new QProcess;
    ecTools << ecTool;
    // Neither its output nor its exit code tells how the EC is.
    const ToolResult run = runTool(*ecTool, FlashingTool::ofEc());
    if (ecTool->error() == QProcess::FailedToStart)
        qWarning() << "The EC tool cannot be started:" << FlashingTool::ofEc().program << run.failure;
    qDebug() << "ecUpdate Leave |";
}

} // namespace tarnFirmwareUpdate
