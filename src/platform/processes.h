#pragma once

#include "platform/seam.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace tarnPlatform {

// The processes of the computer. Any thread.
class ProcessList : public Seam<ProcessList>
{
public:
    virtual ~ProcessList() = default;
    // Walks a snapshot of the file names of their programs until the visitor says that it has seen enough;
    // true when it did. False also when there is no snapshot.
    [[nodiscard]] virtual bool anyOf(const std::function<bool(const QString &)> &matches) = 0;
    // The full paths of those programs that have this file name, in any spelling of upper and lower case. One
    // that cannot be read is empty, and so is the only one where the processes cannot be listed.
    [[nodiscard]] virtual QStringList pathsOf(const QString &fileName) = 0;

private:
    friend class Seam<ProcessList>;
    static ProcessList &ofSystem();
};

} // namespace tarnPlatform
