#include "platform/version.h"

namespace tarnPlatform {

QString version()
{
    return QStringLiteral(TARN_VERSION);
}

} // namespace tarnPlatform
