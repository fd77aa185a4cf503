#include "pipe/tarn_pipe_server.h"

#include "accessory/ec_power_mode_manager.h"
#include "pipe/outbox/notify_client.h"

#include <QDebug>
#include <QThreadPool>
#include <QTimer>

#include <chrono>

namespace tarnPipeServer {
namespace {

// How long smart charging may stay off: 5 days, 432,000,000 ms.
constexpr std::chrono::milliseconds smartChargingReset = std::chrono::hours(5 * 24);

// Waits for the EC, so it must not run on the server's thread.
void switchSmartChargingOn()
{
    if (!tarnAccessoryManager::EcPowerModeManager::instance()->setSmartChargingStatus(true))
        return; // nothing retries; a client that asks and finds it off starts the countdown again
    notifyClient(QStringLiteral("getSmartChargingStatus"), QStringLiteral("ON"));
}

} // namespace

void TarnPipeServer::createSmartChargingTimer()
{
    smartChargingTimer = new QTimer(this);
    smartChargingTimer->setSingleShot(true);
    connect(smartChargingTimer, &QTimer::timeout, this, &TarnPipeServer::handleSmartChargingExpiry);
    connect(this, &TarnPipeServer::startChangingTimer, this, &TarnPipeServer::startSmartChargingTimer);
    connect(this, &TarnPipeServer::stopChangingTimer, this, &TarnPipeServer::stopSmartChargingTimer);
}

// A running countdown is never started afresh: the five days run from when smart charging was first seen off.
void TarnPipeServer::startSmartChargingTimer()
{
    if (smartChargingTimer->isActive()) {
        qDebug() << "smart changing timer is active already.";
        return;
    }
    smartChargingTimer->start(smartChargingReset);
    qDebug() << "begin smart changing timer.";
    qDebug() << "smart changing timer started? " << smartChargingTimer->isActive();
}

void TarnPipeServer::stopSmartChargingTimer()
{
    if (smartChargingTimer->isActive()) {
        smartChargingTimer->stop();
        qDebug() << "smart changing timer is active, now stop it.";
    } else {
        qDebug() << "smart changing timer is not active.";
    }
    qDebug() << "stop smart changing timer.";
}

void TarnPipeServer::handleSmartChargingExpiry()
{
    qDebug() << "After 5 days, reset smart changing to ON.";
    QThreadPool::globalInstance()->start(switchSmartChargingOn);
}

} // namespace tarnPipeServer
