#include "platform/durable_files.h"
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

constexpr char newSettings[] = "temp.ini";

// Lines end at "\n", so a "\r" before it belongs to its line and goes when the line is replaced; the tool
// reads both. Every line that is written gets its end, the last one too. False when something could not be
// written.
bool rewrite(std::istream &from, std::ostream &to, const std::string &binName)
{
    const auto binNameLine = [&binName] {
        return announcedBinNameLine([&binName] { return "BinName=" + binName; });
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
        to.open(newSettings, std::ios::binary | std::ios::trunc);
    if (!from.is_open() || !to.is_open()) {
        qDebug() << "Error opening files!";
        return false;
    }
    const bool written = rewrite(from, to, binName);
    from.close();
    to.close();
    const QString temporary = QString::fromLatin1(newSettings);
    const QString target = QString::fromLocal8Bit(iniPath.c_str(), static_cast<qsizetype>(iniPath.size()));
    // The old settings go only when the new ones are complete.
    const bool safe = written && tarnPlatform::flushToDisk(temporary);
    if (!written || !tarnPlatform::replaceFile(temporary, target)) {
        qWarning() << "The settings of the EC tool cannot be replaced:" << target;
        QFile::remove(temporary);
        return false;
    }
    if (!safe)
        qWarning() << "The settings of the EC tool may not be on the disk yet:" << target;
    qDebug() << "modifyEcIniFile Leave |";
    return true;
}

void FirmwareUpdater::ecUpdate()
{
    qDebug() << "ecUpdate Enter |";
    auto *ecTool = new QProcess;
    ecTools << ecTool;
    // What it says and how it ends tells nothing about the EC.
    const ToolResult run = runTool(*ecTool, FlashingTool::ofEc());
    if (ecTool->error() == QProcess::FailedToStart)
        qWarning() << "The EC tool cannot be started:" << FlashingTool::ofEc().program << run.failure;
    qDebug() << "ecUpdate Leave |";
}

} // namespace tarnFirmwareUpdate
