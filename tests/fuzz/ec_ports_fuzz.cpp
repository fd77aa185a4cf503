// An EC with arbitrary answers. Input: the operation or, with the next numbers, the request; then what the
// ports read in turn, over and over.
#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "accessory/graphics_colours.h"
#include "accessory/kvane_accessory_manager.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "graphics/graphics_accessory_manager.h"
#include "harness.h"
#include "pipe/tarn_pipe_server.h"
#include "support/command_samples.h"
#include "support/port_backend.h"
#include "support/reply_rules.h"
#include "support/run_folder.h"
#include "support/virtual_clock.h"

#include <QJsonDocument>

#include <vector>

using namespace std::chrono_literals;
using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
using tarnFuzz::require;

namespace {

class AnsweringPorts : public tarnTest::PortBackend
{
public:
    AnsweringPorts()
    {
        folder.installPortLibrary();
        setPortBackend(this);
    }

    void out(std::uint16_t port, std::uint8_t) override
    {
        require(port == EC_DATA_PORT || port == EC_CMD_STATUS_PORT, "only the EC's ports are written");
    }
    std::uint8_t in(std::uint16_t port) override
    {
        require(port == EC_DATA_PORT || port == EC_CMD_STATUS_PORT, "only the EC's ports are read");
        if (answers.isEmpty())
            return 0;
        return static_cast<std::uint8_t>(answers.at(next++ % answers.size()));
    }
    void answer(const QByteArray &bytes)
    {
        answers = bytes;
        next = 0;
        clock.forgetWaits();
    }

    tarnTest::RunFolder folder;
    tarnTest::VirtualClock clock;

private:
    QByteArray answers;
    qsizetype next = 0;
};

AnsweringPorts &ports()
{
    static auto *backend = new AnsweringPorts;
    return *backend;
}

EcDirverControllerHal &ec()
{
    return *EcDirverControllerHal::instance();
}

bool readsRegister()
{
    constexpr quint8 sentinel = 0xA7;
    quint8 value = sentinel;
    const int result = ec().readXdata(MCU_LINK_STATUS, &value);
    return result == 0 || (result == -1 && value == sentinel);
}
bool writesRegister()
{
    const int result = ec().writeXdata(XEC_APP_EVENT, 0);
    return result == 0 || result == -1;
}
bool readsEeprom()
{
    const int result = ec().readEeprom(EEP_SMART_CHARGING);
    return result >= -2 && result <= 255;
}
bool writesEeprom()
{
    const int result = ec().writeEeprom(EEP_SMART_CHARGING, SMART_CHARGING_ON);
    return result >= -2 && result <= 0;
}
bool readsDockLight()
{
    const int result = DockAccessoryManager::instance()->getDockLedStatus();
    return result >= -3 && result <= 1;
}
bool readsColour()
{
    const int result = GraphicsAccessoryManager::instance()->getGraphicsRgb();
    return result == -1 || result == -2 || isGraphicsColour(result);
}
bool readsSerialNumber()
{
    const QString text = KvaneAccessoryManager::instance()->getKvaneSnCode();
    return text == "default" || (text.size() == 14 && QByteArray::fromHex(text.toLatin1()).size() == 7);
}
bool readsLight()
{
    const int result = KvaneAccessoryManager::instance()->getKVaneLedLight();
    return result >= -1 && result <= 255;
}
bool appliesProfile()
{
    const int result = EcPowerModeManager::instance()->setEcPowerModeBalance();
    return result >= -2 && result <= 0;
}
bool setsPowerMode()
{
    const int result = EcPowerModeManager::instance()->getTarnPowerMode();
    EcPowerModeManager::instance()->setTarnPowerMode(0);
    return result >= 0 && result <= 3;
}
bool pollsAccessory()
{
    QString version;
    EcDirverReader::instance()->getMcuVersion(version);
    return version.isEmpty() || version.count('.') == 1;
}

// No wait of the driver is longer than about 5 s, and there are at most five in one register access.
constexpr auto longestAccess = 26s;

struct Operation
{
    bool (*run)(); // whether the result is one of those laid down
    int accesses; // of registers, at most
};
constexpr Operation operations[] = {
    {readsRegister, 1},
    {writesRegister, 1},
    {readsEeprom, 16},
    {writesEeprom, 18},
    {readsDockLight, 24},
    {readsColour, 16},
    {readsSerialNumber, 8},
    {readsLight, 2},
    {appliesProfile, 40},
    {setsPowerMode, 3},
    {pollsAccessory, 3},
};

constexpr int mostAccesses = 40; // of a command

// Of every command that needs the EC, but no update, which needs the MCU as well.
std::vector<QByteArray> requestsToTheEc()
{
    std::vector<QByteArray> requests;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
        const bool isUpdate = tarnTest::sampleOf(command.name).hold != tarnTest::EcHold::None
            || command.data.kind == tarn::DataKind::McuFileName;
        if (!command.needsEc || isUpdate)
            continue;
        for (const QString &data : tarnTest::kindsOfData(command))
            requests.push_back(tarnTest::requestOf(command, data));
    }
    return requests;
}

const std::vector<QByteArray> &requests()
{
    static const std::vector<QByteArray> all = requestsToTheEc();
    return all;
}

bool isAnsweredByTheRules(const QByteArray &request)
{
    const QString reply = tarnPipeServer::TarnPipeServer::instance()->dispatch(request);
    return tarnTest::faultOfReply(QJsonDocument::fromJson(request).object(), reply).isEmpty();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t firstRequest = std::size(operations);
    if (size == 0 || data[0] >= firstRequest + requests().size())
        return -1;
    const std::size_t chosen = data[0];
    AnsweringPorts &backend = ports();
    backend.answer(tarnFuzz::bytesOf(data + 1, size - 1));
    const auto before = backend.clock.now();
    const bool isRequest = chosen >= firstRequest;
    require(isRequest ? isAnsweredByTheRules(requests()[chosen - firstRequest]) : operations[chosen].run(),
        "the result is one of those laid down");
    require(!ecAccessMutex.isLocked(), "the EC is given back");
    const int accesses = isRequest ? mostAccesses : operations[chosen].accesses;
    require(backend.clock.now() - before <= accesses * longestAccess, "every wait is bounded");
    return 0;
}
