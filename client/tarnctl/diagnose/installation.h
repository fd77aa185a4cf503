#pragma once

#include "computer.h"

#include <QString>

namespace tarnctl {

// Where the service's program lies, and what is beside it.
class Installation
{
public:
    explicit Installation(const QString &programFolder);

    // The folder of the registered service; without one, that of the installer; without that, tarnctl's own.
    [[nodiscard]] static Installation of(Computer &computer, const ServiceEntry &service);

    [[nodiscard]] QString folder() const { return programFolder; }
    [[nodiscard]] QString program() const;
    // Of a path that is relative to the folder of the program.
    [[nodiscard]] QString path(const QString &relative) const;

private:
    QString programFolder;
};

// The program of a service's command line: without the quotes, without arguments.
[[nodiscard]] QString programOf(const QString &command);

} // namespace tarnctl
