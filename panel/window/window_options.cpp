#include "panel/window/window_options.h"

#include "panel/window/started_program.h"
#include "simulator/state_location.h"

#include <QFileInfo>

namespace tarnPanel {

QString startFolder(const WindowOptions &options)
{
    const bool isUsualPipe = options.pipeName == QLatin1String("tarnPipe");
    return options.startsService && isUsualPipe ? options.folder : QString();
}

QString stateFileOf(const WindowOptions &options)
{
    using namespace tarnSimulator;
    if (!options.stateFile.isEmpty())
        return QFileInfo(options.stateFile).absoluteFilePath();
    if (const auto named = stateFileFromEnvironment())
        return QFileInfo(QString::fromStdU16String(named->u16string())).absoluteFilePath();
    const QString beside = QStringLiteral("%1/function/%2").arg(options.folder, QLatin1String(stateFileName));
    const bool mayBeMade = !startableProgram(startFolder(options), serviceProgram().file).isEmpty();
    return mayBeMade || QFileInfo::exists(beside) ? beside : QString();
}

} // namespace tarnPanel
