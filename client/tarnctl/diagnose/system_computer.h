#pragma once

#include "computer.h"

namespace tarnctl {

// What the implementations of the systems share.
class SystemComputer : public Computer
{
public:
    [[nodiscard]] std::optional<QList<TimedProgram>> programsCalled(const QString &fileName) override;
    [[nodiscard]] std::optional<qint64> freeBytes(const QString &folder) override;
    [[nodiscard]] QStringList downloadFolders() override;
    [[nodiscard]] QStringList versions() override;

protected:
    [[nodiscard]] virtual std::optional<QDateTime> startOf(qint64 processId) = 0;
};

} // namespace tarnctl
