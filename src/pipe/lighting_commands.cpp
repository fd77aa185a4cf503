#include "pipe/command.h"

#include "accessory/dock_accessory_manager.h"
#include "accessory/graphics_colours.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/replies.h"

#include <QDebug>

#include <optional>

namespace tarnPipeServer {

namespace {

using namespace tarnAccessoryManager;

QString colourName(int number)
{
    return QString::fromLatin1(graphicsColours[isGraphicsColour(number) ? number : graphicsOff].wireName);
}

// Empty for a name that the box does not know.
std::optional<int> colourNumber(const QString &name)
{
    for (int number = 0; number < graphicsColourCount; ++number) {
        if (name == QLatin1String(graphicsColours[number].wireName))
            return number;
    }
    return std::nullopt;
}

QString getDockLedStatus(QJsonObject &request)
{
    const int status = DockAccessoryManager::instance()->getDockLedStatus();
    if (status == 1)
        return replyData(request, QStringLiteral("on"));
    if (status == 0)
        return replyData(request, QStringLiteral("off"));
    qDebug() << "Get unknown dock led status: " << status;
    return replyData(request, QStringLiteral("unknown"));
}

QString setDockLedStatus(QJsonObject &request)
{
    const QString data = requestData(request);
    const bool on = data == QStringLiteral("on");
    if (!on && data != QStringLiteral("off")) {
        qDebug() << "Unknown command: " << data;
        return replyResult(request, false);
    }
    return replyResult(request, DockAccessoryManager::instance()->setDockLedStatus(on ? 1 : 0) == 0);
}

QString getGraphicsRGB(QJsonObject &request)
{
    const int number = GraphicsAccessoryManager::instance()->getGraphicsRgb();
    if (!isGraphicsColour(number))
        qDebug() << "Get unknown graphics rgb ver: " << number;
    return replyData(request, colourName(number));
}

QString setGraphicsRGB(QJsonObject &request)
{
    GraphicsAccessoryManager *graphics = GraphicsAccessoryManager::instance();
    const QString data = requestData(request);
    if (data == QStringLiteral("on")) {
        const int saved = graphics->readGraphicsColor();
        const bool success = graphics->setGraphicsRgb(saved) == 0;
        request.insert(QStringLiteral("data"), colourName(saved));
        return replyResult(request, success);
    }
    const std::optional<int> number = colourNumber(data);
    if (!number) {
        qDebug() << "Unknown command: " << data;
        return replyResult(request, false);
    }
    return replyResult(request, graphics->setGraphicsRgb(*number) == 0);
}

constexpr Command lightingTable[] = {
    {"getDockLedStatus", &getDockLedStatus, Lane::WaitsForEc},
    {"setDockLedStatus", &setDockLedStatus, Lane::WaitsForEc},
    {"getGraphicsRGB", &getGraphicsRGB, Lane::WaitsForEc},
    {"setGraphicsRGB", &setGraphicsRGB, Lane::WaitsForEc},
};

} // namespace

std::span<const Command> lightingCommands()
{
    return lightingTable;
}

} // namespace tarnPipeServer
