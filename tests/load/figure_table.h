#pragma once

#include <QString>

#include <iostream>

namespace tarnLoad {

[[nodiscard]] inline QString seconds(qint64 ms)
{
    return QString::number(static_cast<double>(ms) / 1000, 'f', 1);
}

// One row of the table that scripts/load prints at its end.
inline void report(const QString &name, const QString &text)
{
    std::cout << "figure | " << name.leftJustified(34).toStdString() << " | " << text.toStdString()
              << std::endl;
}

} // namespace tarnLoad
