#include "pipe/command.h"

#include "accessory/ec_power_mode_manager.h"
#include "accessory/power_profiles.h"
#include "pipe/replies.h"
#include "pipe/tarn_pipe_server.h"

#include <QDebug>

#include <optional>

namespace tarnPipeServer {
namespace {

using namespace tarnAccessoryManager;

std::optional<quint32> profileNumber(const QString &name)
{
    const PowerProfile *profile = profileOfName(name.toStdString());
    return profile ? std::optional(static_cast<quint32>(profile->number)) : std::nullopt;
}

QString profileName(int number)
{
    const PowerProfile *profile = profileOfNumber(number);
    return QString::fromLatin1(profile ? profile->name : noProfileName);
}

QString powerModeControl(QJsonObject &request)
{
    EcPowerModeManager *manager = EcPowerModeManager::instance();
    const QString data = requestData(request);
    if (data == QStringLiteral("first")) {
        manager->powerModeFirstRun();
        const int mode = manager->currentPowerMode();
        qDebug() << "+++++++++++++++++++===========================:" << mode;
        return replyWith(request, QStringLiteral("result"), QString::number(mode));
    }
    if (data == QStringLiteral("last")) {
        manager->powerModeLastRun();
        return {}; // no reply, because the client is closing
    }
    const auto profile = profileNumber(data);
    if (!profile) {
        qDebug() << "Unknown command: " << data;
        return replyResult(request, false);
    }
    return replyResult(request, manager->setEcPowerMode(*profile) == 0);
}

QString setSmartChargingStatus(QJsonObject &request)
{
    const QString data = requestData(request);
    const bool on = data == QStringLiteral("ON");
    if (!on && data != QStringLiteral("OFF")) {
        qDebug() << "Unknown command: " << data;
        return replyResult(request, false);
    }
    const bool success = EcPowerModeManager::instance()->setSmartChargingStatus(on);
    // Also after a failure: an OFF that failed half-way may still have reached the EC.
    if (on)
        Q_EMIT TarnPipeServer::instance()->stopChangingTimer();
    else
        Q_EMIT TarnPipeServer::instance()->startChangingTimer();
    return replyResult(request, success);
}

QString getSmartChargingStatus(QJsonObject &request)
{
    const auto on = EcPowerModeManager::instance()->readSmartCharging();
    if (!on)
        return replyData(request, outcome(false));
    if (!*on)
        Q_EMIT TarnPipeServer::instance()->startChangingTimer();
    return replyData(request, *on ? QStringLiteral("ON") : QStringLiteral("OFF"));
}

QString getTarnPowerMode(QJsonObject &request)
{
    return replyData(request, profileName(EcPowerModeManager::instance()->getTarnPowerMode()));
}

QString setTarnPowerMode(QJsonObject &request)
{
    const auto profile = profileNumber(requestData(request));
    if (!profile) {
        qDebug() << "unknown cmd when set tarn power mode.";
        return replyResult(request, false);
    }
    return replyResult(request, EcPowerModeManager::instance()->setTarnPowerMode(*profile));
}

constexpr Command powerTable[] = {
    {"powerModeControl", &powerModeControl, Lane::WaitsForEc},
    {"setSmartChargingStatus", &setSmartChargingStatus, Lane::WaitsForEc},
    {"getSmartChargingStatus", &getSmartChargingStatus, Lane::WaitsForEc},
    {"getTarnPowerMode", &getTarnPowerMode, Lane::WaitsForEc},
    {"setTarnPowerMode", &setTarnPowerMode, Lane::WaitsForEc},
};

} // namespace

std::span<const Command> powerCommands()
{
    return powerTable;
}

} // namespace tarnPipeServer
