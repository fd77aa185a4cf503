#pragma once

#include "platform/seam.h"

#include <QString>

#include <functional>

namespace tarnPlatform {

// The processes of the computer, by the file name of their program. Any thread.
class ProcessList : public Seam<ProcessList>
{
public:
    virtual ~ProcessList() = default;
    // Walks a snapshot until the visitor says that it has seen enough; true when it did. False also when
    // there is no snapshot.
    [[nodiscard]] virtual bool anyOf(const std::function<bool(const QString &)> &matches) = 0;

private:
    friend class Seam<ProcessList>;
    static ProcessList &ofSystem();
};

} // namespace tarnPlatform
