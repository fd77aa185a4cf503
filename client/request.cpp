#include "request.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <atomic>

namespace tarn {

namespace {

// "<process>-<random>-<number>": process ids are reused, and an answer to an earlier process may still wait
// in the service's queue.
QString nextTag()
{
    static const QString process =
        QStringLiteral("%1-%2").arg(QString::number(QCoreApplication::applicationPid()),
            QString::number(QRandomGenerator::global()->generate(), 36));
    static std::atomic<int> counter = 0;
    return process + u'-' + QString::number(++counter);
}

} // namespace

Request buildRequest(const QString &command, const std::optional<QString> &data)
{
    Request request;
    request.tag = nextTag();
    QJsonObject object;
    object.insert(QLatin1StringView("cmd"), command);
    if (data)
        object.insert(QLatin1StringView("data"), *data);
    object.insert(tagKey, request.tag);
    request.bytes = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return request;
}

} // namespace tarn
