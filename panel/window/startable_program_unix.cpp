#include "panel/window/started_program.h"

#include <QDir>
#include <QFileInfo>

namespace tarnPanel {

QString startableProgram(const QString &folder, const QString &name)
{
    if (folder.isEmpty())
        return {};
    const QString program = QDir(folder).absoluteFilePath(name);
    return QFileInfo(program).isExecutable() ? program : QString();
}

} // namespace tarnPanel
