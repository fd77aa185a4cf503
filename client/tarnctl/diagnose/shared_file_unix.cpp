#include "shared_file_opening.h"

#include <QFile>

namespace tarnctl {

bool openShared(QFile &file, QString &problem)
{
    if (file.open(QIODevice::ReadOnly))
        return true;
    problem = file.errorString();
    return false;
}

} // namespace tarnctl
