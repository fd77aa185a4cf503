#include "pipe/command.h"

#include "accessory/kvane_accessory_manager.h"
#include "device/monitor/ec_dirver_reader.h"
#include "pipe/replies.h"

namespace tarnPipeServer {
namespace {

using tarnAccessoryManager::KvaneAccessoryManager;
using tarnDeviceInfos::EcDirverReader;

// One of the monitor's texts that come straight from the EC; empty when the EC did not answer.
QString readText(QString &(EcDirverReader::*read)(QString &))
{
    QString text;
    return (EcDirverReader::instance()->*read)(text);
}

QString getAccessoryType(QJsonObject &request)
{
    return replyData(request, EcDirverReader::instance()->accessoryName());
}

QString getMcuVersion(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getMcuVersion));
}

QString getHardwareVersion(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getHardwareVersion));
}

QString getAccessoryCode(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getAccessoryCode));
}

QString getMcuUpdateParameters(QJsonObject &request)
{
    request.insert(QStringLiteral("mcuVer"), readText(&EcDirverReader::getMcuVersion));
    request.insert(QStringLiteral("hardwareVer"), readText(&EcDirverReader::getHardwareVersion));
    request.insert(QStringLiteral("accessoryCode"), readText(&EcDirverReader::getAccessoryCode));
    return messageText(request);
}

QString getTarnKvaneSnCode(QJsonObject &request)
{
    return replyData(request, KvaneAccessoryManager::instance()->getKvaneSnCode());
}

QString setKVaneLedLight(QJsonObject &request)
{
    // Text that is no number sets 0.
    KvaneAccessoryManager::instance()->setKVaneLedLight(static_cast<quint32>(requestData(request).toInt()));
    return messageText(request);
}

QString getKVaneLedLight(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKVaneLedLight()));
}

QString getKvaneChargingStatus(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKvaneChargingStatus()));
}

QString getKvaneBatteryNum(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKvaneBatteryNum()));
}

QString getTarnChargingStatus(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentTarnChargingStatus()));
}

QString getTarnBatteryNum(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentTarnBatteryNum()));
}

constexpr Command accessoryTable[] = {
    {"getAccessoryType", &getAccessoryType, Lane::NeverWaits},
    {"getMcuVersion", &getMcuVersion, Lane::WaitsForEc},
    {"getHardwareVersion", &getHardwareVersion, Lane::WaitsForEc},
    {"getAccessoryCode", &getAccessoryCode, Lane::WaitsForEc},
    {"getMcuUpdateParameters", &getMcuUpdateParameters, Lane::WaitsForEc},
    {"getTarnKvaneSnCode", &getTarnKvaneSnCode, Lane::WaitsForEc},
    {"setKVaneLedLight", &setKVaneLedLight, Lane::WaitsForEc},
    {"getKVaneLedLight", &getKVaneLedLight, Lane::NeverWaits},
    {"getKvaneChargingStatus", &getKvaneChargingStatus, Lane::NeverWaits},
    {"getKvaneBatteryNum", &getKvaneBatteryNum, Lane::NeverWaits},
    {"getTarnChargingStatus", &getTarnChargingStatus, Lane::NeverWaits},
    {"getTarnBatteryNum", &getTarnBatteryNum, Lane::NeverWaits},
};

} // namespace

std::span<const Command> accessoryCommands()
{
    return accessoryTable;
}

} // namespace tarnPipeServer
