#include "device/monitor/ec_dirver_reader.h"

#include "accessory/ec_power_mode_manager.h"
#include "accessory/kvane_accessory_manager.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/accessory_table.h"
#include "graphics/graphics_accessory_manager.h"
#include "pipe/outbox/notify_client.h"
#include "platform/process_wide.h"
#include "platform/waits.h"

#include <QDebug>
#include <QEvent>

namespace tarnDeviceInfos {
namespace {

using namespace std::chrono_literals;
using tarnAccessoryManager::EcPowerModeManager;
using tarnAccessoryManager::GraphicsAccessoryManager;
using tarnAccessoryManager::KvaneAccessoryManager;
using tarnPipeServer::notifyClient;
using tarnPlatform::pumpEventsFor;
using tarnPlatform::sleepFor;

constexpr auto cyclePause = 100ms;
constexpr auto settleTime = 300ms;

constexpr quint8 unreadByte = 250; // the value after a failed read: not linked, or an unknown code
constexpr quint8 unknownAccessory = 251;

// The command under which a value is sent to the client, and the function that reads it. In the order of
// EcDirverReader::Watched.
struct WatchedValue
{
    const char *command;
    int (KvaneAccessoryManager::*read)();
};
constexpr WatchedValue watchedValues[] = {
    {"getKVaneLedLight", &KvaneAccessoryManager::getKVaneLedLight},
    {"getKvaneChargingStatus", &KvaneAccessoryManager::getKvaneChargingStatus},
    {"getKvaneBatteryNum", &KvaneAccessoryManager::getKvaneBatteryNum},
    {"getTarnChargingStatus", &KvaneAccessoryManager::getTarnChargingStatus},
    {"getTarnBatteryNum", &KvaneAccessoryManager::getTarnBatteryNum},
};

int readWatched(std::size_t value)
{
    const auto read = watchedValues[value].read;
    return (KvaneAccessoryManager::instance()->*read)();
}

} // namespace

EcDirverReader *EcDirverReader::instance()
{
    return tarnPlatform::ProcessWide<EcDirverReader>::instance();
}

EcDirverReader::EcDirverReader()
{
    qDebug() << "EcDirverReader object is Created!";
}

EcDirverReader::~EcDirverReader()
{
    qDebug() << "EcDirverReader object is kill!";
}

void EcDirverReader::run()
{
    qDebug() << "EcDirverReaderRun() ThreadId()-------: " << QThread::currentThreadId();
    qDebug() << "mcuLinkModel is " << mcuLinkModel.load();
    const auto ended = [this] {
        return endRequested.load();
    };

    while (!ended() && !EcDirverControllerHal::instance()->hasEcAnswered()) {
        getAccessoryTypeForFirst();
        pumpEventsFor(cyclePause, ended);
    }
    if (ended())
        return;
    qDebug() << "getAccessoryTypeForFirst finish normal.";
    pumpEventsFor(settleTime, ended);
    if (ended())
        return;
    EcPowerModeManager::instance()->getSmartChargingStatus();

    while (!ended()) {
        if (!isPaused())
            runCycle();
        if (ended())
            return;
        sleepFor(cyclePause);
    }
}

void EcDirverReader::getAccessoryTypeForFirst()
{
    qDebug() << "getAccessoryTypeForFirst Enter |";
    const EcAccess access;
    if (!access)
        return;
    // The host's own values are announced whatever is attached.
    announceValue(TarnChargingStatus);
    announceValue(TarnBatteryNum);
    detectAttachedAccessory();
    qDebug() << "getAccessoryTypeForFirst Leave |";
}

void EcDirverReader::pollAccessory()
{
    quint8 linkStatus = unreadByte;
    EcDirverControllerHal::instance()->readXdata(MCU_LINK_STATUS, &linkStatus);
    if (linkStatus != MCU_LINKED) {
        handleDetach(linkStatus);
        return;
    }
    mcuLinkStatus = linkStatus;
    quint8 code = unreadByte;
    EcDirverControllerHal::instance()->readXdata(ACCESSORY_CODE, &code);
    if (code != mcuLinkModel)
        handleChange(code);
}

void EcDirverReader::setEcUpdating(bool updating)
{
    const QMutexLocker locker(&updateMutex);
    // A second call must not wait for the EC lock, which the first one keeps.
    if (!updateHoldsEcLock)
        updateHoldsEcLock = ecAccessMutex.lock();
    if (updateHoldsEcLock)
        ecUpdating = updating;
}

QString EcDirverReader::accessoryName() const
{
    const quint8 code = mcuLinkModel;
    if (code == ACCESSORY_NONE)
        return QString::fromLatin1(noAccessoryName);
    const AccessoryKind *kind = findAccessory(code);
    return kind ? QString::fromLatin1(kind->name) : QString();
}

// A thread object must not be deleted while its thread runs, and handlers may still use it. So deleteLater()
// only asks the loop to end; endProcess() deletes the object.
bool EcDirverReader::event(QEvent *event)
{
    if (event->type() != QEvent::DeferredDelete)
        return QThread::event(event);
    requestEnd();
    return true;
}

void EcDirverReader::runCycle()
{
    sleepFor(cyclePause);
    const EcAccess access;
    // Between the first test and the lock an update may have begun.
    if (!access || endRequested || isPaused())
        return;
    pollAccessory();
    sleepFor(cyclePause);
    if (graphicsConnected)
        GraphicsAccessoryManager::instance()->handleEcAppEvent();
    if (mcuLinkModel == ACCESSORY_KVANE)
        announceChangedValues();
}

void EcDirverReader::detectAttachedAccessory()
{
    EcDirverControllerHal *ec = EcDirverControllerHal::instance();
    ec->readXdata(MCU_LINK_STATUS, &mcuLinkStatus);
    qDebug() << "getAccessoryTypeForFirst mcuLinkStatus: " << mcuLinkStatus;
    if (mcuLinkStatus != MCU_LINKED) {
        qDebug() << "Connected without accessory!";
        mcuLinkModel = ACCESSORY_NONE;
        mcuLinkStatus = 0;
        return;
    }
    qDebug() << "Connected with accessory!";
    quint8 code = mcuLinkModel;
    ec->readXdata(ACCESSORY_CODE, &code);
    mcuLinkModel = code;

    const AccessoryKind *kind = findAccessory(code);
    if (!kind) {
        qDebug() << "Unknown accessory: " << code;
        mcuLinkModel = unknownAccessory;
        return;
    }
    qDebug() << kind->foundAtFirst;
    if (kind->isGraphicsBox) {
        graphicsConnected = true;
        GraphicsAccessoryManager::instance()->gpuActiveProcessFirst();
    }
    if (code == ACCESSORY_KVANE) {
        for (std::size_t value = LedLight; value < WatchedCount; ++value)
            announceValue(static_cast<Watched>(value));
    }
}

void EcDirverReader::handleDetach(quint8 linkStatus)
{
    if (linkStatus != mcuLinkStatus) {
        qDebug() << "Accessory is disconnected.";
        mcuLinkModel = ACCESSORY_NONE;
        graphicsConnected = false;
        announceAccessory(noAccessoryName);
    }
    mcuLinkStatus = linkStatus;
}

void EcDirverReader::handleChange(quint8 code)
{
    qDebug() << "Accessory is connected.";
    const AccessoryKind *kind = findAccessory(code);
    mcuLinkModel = code;
    if (!kind)
        return; // kept, so that it is not a change again in the next cycle, but not announced
    qDebug() << kind->foundAtChange;
    graphicsConnected = kind->isGraphicsBox;
    announceAccessory(kind->name);
    if (graphicsConnected)
        GraphicsAccessoryManager::instance()->handleGraphicsConnectSignal();
}

void EcDirverReader::announceAccessory(const char *name)
{
    notifyClient(QStringLiteral("changeAccessoryType"), QString::fromLatin1(name));
}

void EcDirverReader::announceValue(Watched value)
{
    const int reading = readWatched(value);
    sent[value] = reading;
    notifyClient(QString::fromLatin1(watchedValues[value].command), QString::number(reading));
}

void EcDirverReader::announceChangedValues()
{
    for (std::size_t value = LedLight; value < WatchedCount; ++value) {
        latest[value] = readWatched(value);
        if (latest[value] == sent[value])
            continue;
        sent[value] = latest[value];
        notifyClient(QString::fromLatin1(watchedValues[value].command), QString::number(latest[value]));
    }
}

} // namespace tarnDeviceInfos
