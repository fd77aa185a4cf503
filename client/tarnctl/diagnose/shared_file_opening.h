#pragma once

#include <QString>

class QFile;

namespace tarnctl {

// Opens the file, which has its name, for reading, so that others may write, rename and remove it meanwhile.
// False when it cannot be opened; then the problem says why.
[[nodiscard]] bool openShared(QFile &file, QString &problem);

} // namespace tarnctl
