#pragma once

#include <QString>

namespace tarnService {

inline QString version()
{
    return QStringLiteral("1.40");
}

} // namespace tarnService
