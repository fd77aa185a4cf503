#include "pipe/tarn_pipe_server.h"

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

} // namespace

QString TarnPipeServer::getAccessoryType(QJsonObject &request)
{
    return replyData(request, EcDirverReader::instance()->accessoryName());
}

QString TarnPipeServer::getMcuVersion(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getMcuVersion));
}

QString TarnPipeServer::getHardwareVersion(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getHardwareVersion));
}

QString TarnPipeServer::getAccessoryCode(QJsonObject &request)
{
    return replyData(request, readText(&EcDirverReader::getAccessoryCode));
}

QString TarnPipeServer::getMcuUpdateParameters(QJsonObject &request)
{
    request.insert(QStringLiteral("mcuVer"), readText(&EcDirverReader::getMcuVersion));
    request.insert(QStringLiteral("hardwareVer"), readText(&EcDirverReader::getHardwareVersion));
    request.insert(QStringLiteral("accessoryCode"), readText(&EcDirverReader::getAccessoryCode));
    return messageText(request);
}

QString TarnPipeServer::getTarnKvaneSnCode(QJsonObject &request)
{
    return replyData(request, KvaneAccessoryManager::instance()->getKvaneSnCode());
}

QString TarnPipeServer::setKVaneLedLight(QJsonObject &request)
{
    // Text that is no number sets 0.
    KvaneAccessoryManager::instance()->setKVaneLedLight(static_cast<quint32>(requestData(request).toInt()));
    return messageText(request);
}

QString TarnPipeServer::getKVaneLedLight(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKVaneLedLight()));
}

QString TarnPipeServer::getKvaneChargingStatus(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKvaneChargingStatus()));
}

QString TarnPipeServer::getKvaneBatteryNum(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentKvaneBatteryNum()));
}

QString TarnPipeServer::getTarnChargingStatus(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentTarnChargingStatus()));
}

QString TarnPipeServer::getTarnBatteryNum(QJsonObject &request)
{
    return replyData(request, QString::number(EcDirverReader::instance()->sentTarnBatteryNum()));
}

} // namespace tarnPipeServer
