#include "tarn/client.h"

#include "client_core.h"
#include "pipe_address.h"

namespace tarn {

namespace {

constexpr QLatin1StringView usualPipe("tarnPipe");

} // namespace

Client::Client(QObject *parent)
    : Client(usualPipe, parent)
{ }

Client::Client(const QString &pipeName, QObject *parent)
    : Client(pipeName, ClientTimes(), parent)
{ }

Client::Client(const QString &pipeName, const ClientTimes &times, QObject *parent)
    : QObject(parent)
    , core(new ClientCore(*this, pipeName, times))
{ }

Client::~Client()
{
    core->shut();
    delete core;
}

void Client::open()
{
    core->open();
}

void Client::close()
{
    core->close();
}

void Client::setLooksForSilence(bool isOn)
{
    core->setLooksForSilence(isOn);
}

Client::State Client::state() const
{
    return core->state();
}

Client::Problem Client::problem() const
{
    return core->problem();
}

QString Client::problemText() const
{
    return core->problemText();
}

QString Client::pipePath() const
{
    return pipeAddress(core->pipeName()).text;
}

std::optional<Accessory> Client::accessory() const
{
    return asAccessory(core->kept(KeptValue::Accessory));
}

std::optional<int> Client::batteryLevel() const
{
    return core->kept(KeptValue::BatteryLevel);
}

std::optional<bool> Client::isCharging() const
{
    return asSwitch(core->kept(KeptValue::Charging));
}

std::optional<int> Client::kvaneBatteryLevel() const
{
    return core->kept(KeptValue::KvaneBatteryLevel);
}

std::optional<bool> Client::isKvaneCharging() const
{
    return asSwitch(core->kept(KeptValue::KvaneCharging));
}

std::optional<int> Client::kvaneLight() const
{
    return core->kept(KeptValue::KvaneLight);
}

// Both may be called from the thread that connects or disconnects.
void Client::connectNotify(const QMetaMethod &)
{
    core->noteListeners();
}

void Client::disconnectNotify(const QMetaMethod &)
{
    core->noteListeners();
}

bool Client::mustKnowOld() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&Client::graphicsDisengaged))
        || isSignalConnected(QMetaMethod::fromSignal(&Client::smartChargingRestored));
}

bool Client::isListened() const
{
    for (int i = staticMetaObject.methodOffset(); i < staticMetaObject.methodCount(); ++i) {
        const QMetaMethod method = staticMetaObject.method(i);
        if (method.methodType() == QMetaMethod::Signal && isSignalConnected(method))
            return true;
    }
    return false;
}

} // namespace tarn
