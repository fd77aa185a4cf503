#include "tarn/client.h"

#include "client_core.h"
#include "reply_maker.h"
#include "value_text.h"

#include "tarn/firmware_name.h"

#include <algorithm>

namespace tarn {

namespace {

using L = QLatin1StringView;
using std::chrono::milliseconds;

// Timers count milliseconds in an int, which is full after 24 days.
constexpr std::chrono::hours longestLimit(7 * 24);

constexpr L profileCommand("powerModeControl");
constexpr L mcuUpdateCommand("requestMcuUpdate");
constexpr L ecUpdateCommand("requestEcUpdate");
constexpr L mcuVersionKey("mcuVer");
constexpr L hardwareVersionKey("hardwareVer");
constexpr L accessoryCodeKey("accessoryCode");

Reply unchanged(const Reply &reply)
{
    return reply;
}

template <typename T>
QFuture<T> add(ClientCore &core, const QString &command, const QString &data,
    typename TypedPromise<T>::Conversion convert, std::optional<std::chrono::milliseconds> limit = {})
{
    auto promise = std::make_unique<TypedPromise<T>>(std::move(convert));
    QFuture<T> future = promise->future();
    auto request = std::make_unique<QueuedRequest>();
    request->command = command;
    request->data = data;
    if (limit)
        request->limit = std::clamp(*limit, milliseconds(0), milliseconds(longestLimit));
    request->promise = std::move(promise);
    core.add(std::move(request));
    return future;
}

QFuture<Reply> order(ClientCore &core, L command, const QString &data = {})
{
    return add<Reply>(core, command.toString(), data, unchanged);
}

// The meaning of the value where the service answered with one.
template <typename T>
QFuture<ReplyWith<T>> ask(
    ClientCore &core, L command, std::optional<T> (*meaning)(const QString &text), const QString &data = {})
{
    return add<ReplyWith<T>>(core, command.toString(), data, [meaning](const Reply &reply) {
        return ReplyWith<T>(reply, reply.isAnswered() ? meaning(reply.value()) : std::nullopt);
    });
}

// The meaning of a field of the answer.
template <typename T>
QFuture<ReplyWith<T>> askFor(
    ClientCore &core, L command, L key, std::optional<T> (*meaning)(const QString &text), const QString &data)
{
    return add<ReplyWith<T>>(core, command.toString(), data, [key, meaning](const Reply &reply) {
        const QString text = reply.answer().value(key).toString();
        return ReplyWith<T>(reply, reply.isAnswered() ? meaning(text) : std::nullopt);
    });
}

QString switchWord(bool isOn)
{
    return isOn ? QStringLiteral("on") : QStringLiteral("off");
}

McuUpdateParameters parametersIn(const QJsonObject &answer)
{
    return {answer.value(mcuVersionKey).toString(), byteIn(answer.value(hardwareVersionKey).toString()),
        byteIn(answer.value(accessoryCodeKey).toString())};
}

// Nothing when the file's name may be sent.
std::optional<Reply> refusal(L command, const QString &fileName, FirmwareKind kind)
{
    const std::optional<QString> objection = firmwareNameObjection(fileName, kind);
    if (!objection)
        return std::nullopt;
    return ReplyMaker(command.toString()).ended(Outcome::Refused, *objection);
}

template <typename T> QFuture<T> endedAlready(const T &reply)
{
    QPromise<T> promise;
    promise.start();
    promise.addResult(reply);
    promise.finish();
    return promise.future();
}

} // namespace

QFuture<Reply> Client::send(
    const QString &command, const QString &data, std::optional<std::chrono::milliseconds> limit)
{
    if (command.isEmpty()) {
        return endedAlready(ReplyMaker(command).ended(
            Outcome::Refused, QStringLiteral("A request needs the name of a command.")));
    }
    return add<Reply>(*core, command, data, unchanged, limit);
}

QFuture<ReplyWith<Accessory>> Client::getAccessoryType()
{
    return ask(*core, L("getAccessoryType"), accessoryNamed);
}

QFuture<ReplyWith<QString>> Client::getMcuVersion()
{
    return ask(*core, L("getMcuVersion"), textIn);
}

QFuture<ReplyWith<int>> Client::getHardwareVersion()
{
    return ask(*core, L("getHardwareVersion"), byteIn);
}

QFuture<ReplyWith<int>> Client::getAccessoryCode()
{
    return ask(*core, L("getAccessoryCode"), byteIn);
}

QFuture<ReplyWith<McuUpdateParameters>> Client::getMcuUpdateParameters()
{
    return add<ReplyWith<McuUpdateParameters>>(
        *core, QStringLiteral("getMcuUpdateParameters"), {}, [](const Reply &reply) {
            return ReplyWith(
                reply, reply.isAnswered() ? std::optional(parametersIn(reply.answer())) : std::nullopt);
        });
}

QFuture<ReplyWith<Profile>> Client::powerModeControlFirst()
{
    return ask(*core, profileCommand, profileNumberedIn, QStringLiteral("first"));
}

QFuture<Reply> Client::powerModeControl(Profile profile)
{
    return order(*core, profileCommand, nameOf(profile));
}

QFuture<Reply> Client::powerModeControlLast()
{
    return order(*core, profileCommand, QStringLiteral("last"));
}

QFuture<ReplyWith<Profile>> Client::getTarnPowerMode()
{
    return ask(*core, L("getTarnPowerMode"), profileNamed);
}

QFuture<Reply> Client::setTarnPowerMode(Profile profile)
{
    return order(*core, L("setTarnPowerMode"), nameOf(profile));
}

QFuture<ReplyWith<bool>> Client::getDockLedStatus()
{
    return ask(*core, L("getDockLedStatus"), switchIn);
}

QFuture<Reply> Client::setDockLedStatus(bool isOn)
{
    return order(*core, L("setDockLedStatus"), switchWord(isOn));
}

QFuture<ReplyWith<Colour>> Client::getGraphicsRGB()
{
    return ask(*core, L("getGraphicsRGB"), colourNamed);
}

QFuture<Reply> Client::setGraphicsRGB(Colour colour)
{
    return order(*core, L("setGraphicsRGB"), nameOf(colour));
}

// The colour that came back takes the place of the request's data.
QFuture<ReplyWith<Colour>> Client::setGraphicsRGBOn()
{
    return askFor(*core, L("setGraphicsRGB"), L("data"), colourNamed, QStringLiteral("on"));
}

QFuture<Reply> Client::requestBeginGraphicsMcuUpdate()
{
    return order(*core, L("requestBeginGraphicsMcuUpdate"));
}

QFuture<ReplyWith<bool>> Client::getSmartChargingStatus()
{
    return ask(*core, L("getSmartChargingStatus"), switchIn);
}

QFuture<Reply> Client::setSmartChargingStatus(bool isOn)
{
    return order(*core, L("setSmartChargingStatus"), switchWord(isOn).toUpper());
}

QFuture<ReplyWith<QString>> Client::getTarnKvaneSnCode()
{
    return ask(*core, L("getTarnKvaneSnCode"), serialNumberIn);
}

QFuture<Reply> Client::setKVaneLedLight(std::uint8_t light)
{
    return order(*core, L("setKVaneLedLight"), QString::number(light));
}

QFuture<ReplyWith<int>> Client::getKVaneLedLight()
{
    return ask(*core, L("getKVaneLedLight"), byteIn);
}

QFuture<ReplyWith<bool>> Client::getKvaneChargingStatus()
{
    return ask(*core, L("getKvaneChargingStatus"), chargingIn);
}

QFuture<ReplyWith<int>> Client::getKvaneBatteryNum()
{
    return ask(*core, L("getKvaneBatteryNum"), percentIn);
}

QFuture<ReplyWith<bool>> Client::getTarnChargingStatus()
{
    return ask(*core, L("getTarnChargingStatus"), chargingIn);
}

QFuture<ReplyWith<int>> Client::getTarnBatteryNum()
{
    return ask(*core, L("getTarnBatteryNum"), percentIn);
}

QFuture<ReplyWith<QString>> Client::requestMcuUpdate(const QString &fileName)
{
    if (const std::optional<Reply> refused = refusal(mcuUpdateCommand, fileName, FirmwareKind::Mcu))
        return endedAlready(ReplyWith<QString>(*refused, std::nullopt));
    return askFor(*core, mcuUpdateCommand, mcuVersionKey, textIn, fileName);
}

QFuture<Reply> Client::requestEnterMcuUpdateMode()
{
    return order(*core, L("requestEnterMcuUpdateMode"));
}

QFuture<ReplyWith<QString>> Client::requestLeaveMcuUpdateMode()
{
    return ask(*core, L("requestLeaveMcuUpdateMode"), textIn);
}

QFuture<Reply> Client::requestStartEcUpdate()
{
    return order(*core, L("requestStartEcUpdate"));
}

QFuture<Reply> Client::requestEcUpdate(const QString &fileName)
{
    if (const std::optional<Reply> refused = refusal(ecUpdateCommand, fileName, FirmwareKind::Ec))
        return endedAlready(*refused);
    return order(*core, ecUpdateCommand, fileName);
}

} // namespace tarn
