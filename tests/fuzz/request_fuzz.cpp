// What a client writes to the pipe. Input: the attached accessory's code as a digit; a fault of the machine,
// '@' for none or the characters from 'A' on in the order of the fault table; then the request.
#include "client/command_catalogue.h"
#include "device/ec_access_lock.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "fuzzed_machine.h"
#include "harness.h"
#include "pipe/tarn_pipe_server.h"
#include "update/firmware_updater.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

using namespace tarnDeviceInfos;
using tarnFuzz::FuzzedMachine;
using tarnFuzz::require;
using tarnPipeServer::TarnPipeServer;

namespace {

// What handlers put into a reply; everything else in it is the client's own.
bool isAnswerKey(const QString &key)
{
    static const QSet<QString> keys = [] {
        QSet<QString> all;
        for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
            for (const QLatin1StringView key : command.answerKeys)
                all += key;
        }
        return all;
    }();
    return keys.contains(key);
}

void checkReply(const QJsonObject &request, const QString &reply)
{
    if (reply.isEmpty())
        return;
    const QJsonDocument document = QJsonDocument::fromJson(reply.toUtf8());
    require(document.isObject(), "a reply is one JSON object");
    require(request.value("cmd").isString(), "without a command there is no reply");
    const QJsonObject answer = document.object();
    for (auto field = request.begin(); field != request.end(); ++field) {
        if (!isAnswerKey(field.key()))
            require(answer.contains(field.key()), "fields of the request come back");
    }
    for (auto field = answer.begin(); field != answer.end(); ++field)
        require(request.contains(field.key()) || isAnswerKey(field.key()), "only answers are added");
    require(answer.value("cmd") == request.value("cmd"), "the command comes back");
}

// Two commands hold the EC beyond their own end; no other may.
void giveEcBack(const QString &command)
{
    auto *monitor = EcDirverReader::instance();
    if (ecAccessMutex.isLocked())
        require(command == "requestStartEcUpdate" || command == "requestEnterMcuUpdateMode",
            "the EC is given back");
    if (monitor->isEcUpdating())
        monitor->setEcUpdating(false);
    static_cast<void>(tarnFirmwareUpdate::FirmwareUpdater::instance()->leaveMcuUpdateMode());
    // The hold of an EC update ends with its process only, which goes on here.
    if (ecAccessMutex.isLocked())
        ecAccessMutex.unlock();
}

void switchFaultOn(char letter)
{
    using namespace tarnSimulator;
    const int index = letter - 'A';
    if (index < 0 || index >= static_cast<int>(faultCount))
        return;
    const FaultDescription &fault = faultTable()[static_cast<std::size_t>(index)];
    const bool isRegister = fault.kind == FaultValue::Register;
    FuzzedMachine::instance().faults().switchOn(fault.fault, isRegister ? XEC_APP_CMD : fault.onValue);
}

void checkGoodRequest(std::uint8_t accessory)
{
    const QString reply = TarnPipeServer::instance()->dispatch(R"({"cmd":"getAccessoryCode","id":[1]})");
    const QString expected =
        QStringLiteral(R"({"cmd":"getAccessoryCode","data":"%1","id":[1]})").arg(accessory);
    require(reply == expected, "a good request afterwards is answered");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t headSize = 2;
    if (size < headSize || data[0] < '0' || data[0] > '9')
        return -1;
    const auto accessory = static_cast<std::uint8_t>(data[0] - '0');
    FuzzedMachine &machine = FuzzedMachine::instance();
    machine.startAfresh();
    machine.attachAndPoll(accessory);
    switchFaultOn(static_cast<char>(data[1]));

    const QByteArray bytes = tarnFuzz::bytesOf(data + headSize, size - headSize);
    const QJsonObject request = QJsonDocument::fromJson(bytes).object();
    checkReply(request, TarnPipeServer::instance()->dispatch(bytes));

    giveEcBack(request.value("cmd").toString());
    machine.faults().clear();
    checkGoodRequest(accessory);
    return 0;
}
