#include "platform/program_path.h"

namespace tarnPlatform {

QString startablePath(const QString &program)
{
    QString path = program;
    return path.replace(QStringLiteral("./TarnServiceGui/"), QStringLiteral("/TarnServiceGui/"));
}

} // namespace tarnPlatform
