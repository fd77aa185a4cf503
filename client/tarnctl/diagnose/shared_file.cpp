#include "shared_file.h"

#include "shared_file_opening.h"

#include <QFile>

#include <algorithm>

namespace tarnctl {

namespace {

enum class Place { Start, End };

std::optional<QByteArray> readPart(const QString &path, QString &problem, qint64 most, Place place)
{
    QFile file(path);
    if (!openShared(file, problem))
        return std::nullopt;
    if (place == Place::End && !file.seek(std::max<qint64>(0, file.size() - most))) {
        problem = file.errorString();
        return std::nullopt;
    }
    const QByteArray bytes = file.read(most);
    if (file.error() != QFileDevice::NoError) {
        problem = file.errorString();
        return std::nullopt;
    }
    return bytes;
}

} // namespace

std::optional<QByteArray> readEnd(const QString &path, QString &problem, qint64 most)
{
    return readPart(path, problem, most, Place::End);
}

std::optional<QByteArray> readStart(const QString &path, QString &problem, qint64 most)
{
    return readPart(path, problem, most, Place::Start);
}

} // namespace tarnctl
