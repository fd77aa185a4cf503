#include "update/flashing_tool.h"

#include "platform/paths.h"
#include "platform/processes.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tarnFirmwareUpdate {

const FlashingTool &FlashingTool::ofMcu()
{
    static const FlashingTool tool {tarnPlatform::path::mcuTool, tarnPlatform::path::mcuFolder};
    return tool;
}

const FlashingTool &FlashingTool::ofEc()
{
    static const FlashingTool tool {tarnPlatform::path::ecTool, tarnPlatform::path::ecFolder};
    return tool;
}

namespace {

// QFileInfo compares files that exist: two that do not would count as the same. Their paths are then
// compared, without regard to upper and lower case.
bool isSameFile(const QFileInfo &ours, const QString &path)
{
    if (ours.exists())
        return QFileInfo(path) == ours;
    return QDir::cleanPath(ours.absoluteFilePath()).compare(path, Qt::CaseInsensitive) == 0;
}

} // namespace

bool FlashingTool::isRunning() const
{
    const QFileInfo ours(program);
    const QStringList paths = tarnPlatform::ProcessList::system().pathsOf(ours.fileName());
    return std::any_of(paths.begin(), paths.end(),
        [&ours](const QString &path) { return path.isEmpty() || isSameFile(ours, path); });
}

} // namespace tarnFirmwareUpdate
