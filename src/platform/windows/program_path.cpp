#include "platform/program_path.h"

namespace tarnPlatform {

QString startablePath(const QString &program)
{
    return program;
}

} // namespace tarnPlatform
