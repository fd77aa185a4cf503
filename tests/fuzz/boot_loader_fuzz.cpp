// What the flasher sends to the boot loader of the simulated MCU. Input: a fault as in the request target,
// then the bytes on the serial line.
#include "device/ec_registers.h"
#include "harness.h"
#include "simulator/boot_loader.h"
#include "simulator/computer_control.h"
#include "simulator/power_on.h"
#include "simulator/simulated_ec.h"

#include <memory>
#include <vector>

using namespace tarnDeviceInfos;
using namespace tarnSimulator;
using tarnFuzz::require;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t initByte = 0x7F;
constexpr std::uint8_t ack = 0x79;
constexpr std::uint8_t bootBits = MCU_UPDATE_ON | MCU_BOOT_LOADER_SELECT;

class SerialMcu
{
public:
    SerialMcu()
        : state(std::make_unique<MachineState>())
    {
        initialiseState(*state);
    }

    MachineState &machine() { return *state; }
    // Protection is what the MCU itself remembers over a reset.
    void startAfresh()
    {
        FaultPanel(*state).clear();
        state->bootLoader.readoutProtected.store(0);
        state->bootLoader.writeProtected.store(0);
        ComputerControl(*state).attach(*findAccessory(ACCESSORY_KVANE));
        reset();
    }
    void reset()
    {
        AccessoryMcu mcu(*state);
        for (const int control : {bootBits | MCU_RESET_PULSE, int {bootBits}}) {
            state->xdata[EC_MCU_UPDATE_CTRL].store(static_cast<std::uint8_t>(control));
            mcu.applyControlByte();
        }
        require(mcu.isInBootLoader(), "a reset starts the boot loader");
    }

private:
    std::unique_ptr<MachineState> state;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return -1;
    static auto *mcu = new SerialMcu;
    mcu->startAfresh();
    BootLoader serial(mcu->machine());
    const std::size_t fault = data[0] - std::size_t {'A'};
    if (fault < faultCount)
        FaultPanel(mcu->machine()).switchOn(static_cast<Fault>(fault), faultTable()[fault].onValue);
    static_cast<void>(serial.receive(Bytes {initByte}));

    // Whole or byte by byte comes to the same, so half of it is sent each way.
    const std::size_t half = size / 2 + 1;
    static_cast<void>(serial.receive(std::span(data + 1, half - 1)));
    for (std::size_t i = half; i < size; ++i)
        static_cast<void>(serial.receive(std::span(data + i, 1)));

    FaultPanel(mcu->machine()).clear();
    mcu->reset();
    require(serial.receive(Bytes {initByte}) == Bytes {ack}, "after a reset it answers");
    require(serial.receive(Bytes {0x02, 0xFD}) == Bytes {ack, 1, 0x04, 0x10, ack}, "and knows what it is");
    return 0;
}
