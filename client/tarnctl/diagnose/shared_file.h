#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tarnctl {

// A settings file has some hundred bytes; something else in its place must not fill the memory.
inline constexpr qint64 mostSettingsBytes = qint64(64) * 1024;

// The content of a file, of a very long one the end, which others may write, rename and remove meanwhile.
// Nothing when it cannot be read; then the problem says why.
[[nodiscard]] std::optional<QByteArray> readEnd(const QString &path, QString &problem, qint64 most);

// The same, but of a longer file the start.
[[nodiscard]] std::optional<QByteArray> readStart(const QString &path, QString &problem, qint64 most);

} // namespace tarnctl
