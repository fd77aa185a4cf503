#pragma once

#include "ec_host.h"

#include "simulator/boot_loader.h"

#include <initializer_list>
#include <vector>

namespace tarnSimulatorTest {

using Bytes = std::vector<std::uint8_t>;

// A host on the EC's channel and on the serial line to the KVane's MCU.
class SerialHost : public EcHost
{
public:
    static constexpr std::uint8_t ack = 0x79;
    static constexpr std::uint8_t nack = 0x1F;
    static constexpr std::uint32_t flash = 0x08000000;
    static constexpr std::uint32_t optionBytes = 0x1FFFF800;
    static constexpr std::uint32_t ram = 0x20000200;
    static constexpr std::uint8_t bootBits =
        tarnDeviceInfos::MCU_UPDATE_ON | tarnDeviceInfos::MCU_BOOT_LOADER_SELECT;

    SerialHost()
        : serial(*state)
    {
        attachKvane();
    }

    void attachKvane() { computer.attach(*tarnSimulator::findAccessory(tarnDeviceInfos::ACCESSORY_KVANE)); }
    [[nodiscard]] bool control(int value)
    {
        return write(tarnDeviceInfos::EC_MCU_UPDATE_CTRL, static_cast<std::uint8_t>(value));
    }
    [[nodiscard]] bool pulseReset(int otherBits)
    {
        return control(otherBits | tarnDeviceInfos::MCU_RESET_PULSE) && control(otherBits);
    }
    [[nodiscard]] bool enterBootLoader() { return pulseReset(bootBits) && send({0x7F}) == Bytes {ack}; }

    Bytes send(const Bytes &bytes) { return serial.receive(bytes); }
    Bytes command(std::uint8_t code) { return send({code, static_cast<std::uint8_t>(~code)}); }
    // With a checksum behind it.
    Bytes sendSummed(Bytes bytes)
    {
        std::uint8_t sum = 0;
        for (const std::uint8_t byte : bytes)
            sum ^= byte;
        bytes.push_back(sum);
        return send(bytes);
    }
    Bytes sendAddress(std::uint32_t address)
    {
        return sendSummed({static_cast<std::uint8_t>(address >> 24), static_cast<std::uint8_t>(address >> 16),
            static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address)});
    }

    // Everything the line answers to a whole command.
    Bytes readMemory(std::uint32_t address, std::uint8_t last)
    {
        return joined({command(0x11), sendAddress(address), send({last, static_cast<std::uint8_t>(~last)})});
    }
    Bytes writeMemory(std::uint32_t address, const Bytes &data)
    {
        Bytes block {static_cast<std::uint8_t>(data.size() - 1)};
        block.insert(block.end(), data.begin(), data.end());
        return joined({command(0x31), sendAddress(address), sendSummed(block)});
    }
    Bytes go(std::uint32_t address) { return joined({command(0x21), sendAddress(address)}); }
    Bytes eraseAll() { return joined({command(0x43), send({0xFF, 0x00})}); }

    [[nodiscard]] int version() const
    {
        using namespace tarnDeviceInfos;
        return computer.peek(MCU_VERSION_MAJOR) * 10000 + computer.peek(MCU_VERSION_MINOR) * 100
            + computer.peek(MCU_VERSION_PATCH);
    }
    // Past the boot loader.
    void putIntoFlash(const Bytes &bytes)
    {
        for (std::size_t i = 0; i < state->bootLoader.flash.size(); ++i)
            state->bootLoader.flash[i].store(i < bytes.size() ? bytes[i] : 0xFF);
    }

    static Bytes joined(std::initializer_list<Bytes> parts)
    {
        Bytes all;
        for (const Bytes &part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }

    tarnSimulator::BootLoader serial;
};

inline const Bytes acked {SerialHost::ack};
inline const Bytes refused {SerialHost::nack};
inline const Bytes ackedTwice {SerialHost::ack, SerialHost::ack};
inline const Bytes done {SerialHost::ack, SerialHost::ack, SerialHost::ack};
inline const Bytes silence;

} // namespace tarnSimulatorTest
