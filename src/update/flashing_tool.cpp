#include "update/flashing_tool.h"

#include "platform/process_list.h"

#include <QFileInfo>

#include <algorithm>

namespace tarnFirmwareUpdate {

const FlashingTool &FlashingTool::ofMcu()
{
    static const FlashingTool tool {
        QStringLiteral("./function/MCU/stm32flash.exe"), QStringLiteral("./function/MCU")};
    return tool;
}

const FlashingTool &FlashingTool::ofEc()
{
    static const FlashingTool tool {
        QStringLiteral("./function/EC/IFU_XE.exe"), QStringLiteral("./function/EC")};
    return tool;
}

bool FlashingTool::isRunning() const
{
    const QFileInfo ours(program);
    const QStringList paths = tarnPlatform::ProcessList::system().pathsOf(ours.fileName());
    return std::any_of(paths.begin(), paths.end(),
        [&ours](const QString &path) { return path.isEmpty() || QFileInfo(path) == ours; });
}

} // namespace tarnFirmwareUpdate
