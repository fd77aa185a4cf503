#pragma once

#include <QString>

namespace tarnPlatform {

// Makes the name free again where a killed server has left its socket behind. A server that still answers is
// never displaced.
void removeLeftoverSocket(const QString &pipeName);

} // namespace tarnPlatform
