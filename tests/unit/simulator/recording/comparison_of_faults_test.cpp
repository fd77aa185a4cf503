#include "recorded_machine.h"

#include "accessory/dock_accessory_manager.h"
#include "accessory/ec_power_mode_manager.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "support/printing.h"

using namespace tarnDeviceInfos;
using tarnSimulator::Deviation;
using tarnSimulator::Fault;

namespace {

struct PlantedFault
{
    Fault fault;
    std::int32_t value;
    Deviation::Kind kind;
    const char *found; // somewhere among what is listed under that kind
};

// Each fault that the EC can have.
const PlantedFault plantedFaults[] = {
    {Fault::IbfStuck, 0, Deviation::Kind::WrongValue, "IBF stayed set through 1000 looks"},
    {Fault::ObfStuck, 0, Deviation::Kind::WrongValue, "OBF stayed set, though the data port was read"},
    {Fault::NoAnswer, 0, Deviation::Kind::WrongValue,
        "a read of 0x06A0 MCU_LINK_STATUS was not finished: no answer in 1000 looks, then the port library"},
    {Fault::Slow, 20, Deviation::Kind::Timing, "a read was answered late"},
    {Fault::MailboxStuck, 0, Deviation::Kind::WrongValue,
        "0x04B0 XEC_APP_CMD stayed at 0x11, the operation never ended"},
    {Fault::EepromBusy, 0, Deviation::Kind::WrongValue,
        "0x0640 EEP_STATUS stayed at 0x00, the operation never ended"},
    {Fault::EepromError, 2, Deviation::Kind::WrongValue, "0x0640 EEP_STATUS is 0x02 (2), expected 0x01 (1)"},
    {Fault::ReadbackOffset, 11, Deviation::Kind::WrongValue, "0x04AB EC_POWERMODE_PL1_CHECK is "},
    {Fault::FailRegister, EC_POWERMODE_PL2, Deviation::Kind::WrongValue,
        "IBF stayed set through 1000 looks, in a write of 0x04A9 EC_POWERMODE_PL2"},
    {Fault::FailRead, ACCESSORY_CODE, Deviation::Kind::WrongValue,
        "a read of 0x06A6 ACCESSORY_CODE was not finished: no answer in 1000 looks"},
    {Fault::FailWrite, EEP_CMD, Deviation::Kind::WrongValue,
        "IBF stayed set through 1000 looks, in a write of 0x0641 EEP_CMD"},
    {Fault::FailAfter, 0, Deviation::Kind::WrongValue, "a read of 0x06A0 MCU_LINK_STATUS was not finished"},
    {Fault::FailAfter, 12, Deviation::Kind::WrongValue, "0x04"},
};

class ComparisonWithFault : public tarnSimulatorTest::ComparedRecording,
                            public ::testing::WithParamInterface<PlantedFault>
{
protected:
    // What uses every part of the EC, between looks at the accessory.
    static void useEc()
    {
        EcDirverReader *const monitor = EcDirverReader::instance();
        auto *const power = tarnAccessoryManager::EcPowerModeManager::instance();
        auto *const dock = tarnAccessoryManager::DockAccessoryManager::instance();
        monitor->pollAccessory();
        static_cast<void>(power->setEcPowerCtrlMode(PL_CTRL_MANUAL));
        static_cast<void>(power->setEcPowerModeHigh());
        static_cast<void>(dock->getDockLedStatus());
        static_cast<void>(power->setSmartChargingStatus(false));
        static_cast<void>(power->getSmartChargingStatus());
        monitor->pollAccessory();
    }
};

INSTANTIATE_TEST_SUITE_P(OfTheEc, ComparisonWithFault, ::testing::ValuesIn(plantedFaults));

} // namespace

TEST_P(ComparisonWithFault, FindsIt)
{
    const PlantedFault &planted = GetParam();
    EcDirverControllerHal::instance();
    machine.attach(ACCESSORY_DOCK);
    useEc();
    compare();
    ASSERT_EQ(all(), QStringList());
    if (planted.fault == Fault::FailAfter)
        machine.faults().switchOn(planted.fault, 0, static_cast<std::uint32_t>(planted.value));
    else
        machine.faults().switchOn(planted.fault, planted.value);
    useEc();
    compare();
    const QStringList &some = planted.kind == Deviation::Kind::Timing ? slow : wrong;
    EXPECT_FALSE(some.filter(planted.found).isEmpty()) << all().join('\n').toStdString();
    if (planted.kind == Deviation::Kind::Timing) {
        EXPECT_EQ(wrong, QStringList());
    }
    EXPECT_EQ(measured, QStringList());
}
