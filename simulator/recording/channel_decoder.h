#pragma once

#include "device/recording/ec_record.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tarnSimulator {

// A register access as the ports show it.
struct DecodedAccess
{
    enum class Kind { Read, Write };

    Kind kind = Kind::Read;
    std::uint16_t address = 0;
    std::uint8_t value = 0;
    std::uint64_t number = 0; // of its first port access
    std::uint64_t startUs = 0; // of the command byte
    std::uint64_t addressUs = 0; // of the last byte of the address
    std::uint64_t endUs = 0; // of the last byte
    std::uint32_t thread = 0;
    std::vector<std::uint64_t> acceptanceUs {}; // of each byte: until a status was seen without IBF
    std::optional<std::uint64_t> answerUs {}; // from the last byte of the address until OBF was seen
    // How long the EC kept the host waiting at least: from the first look at a status that was not yet as
    // wanted to the last one. A host that looks late does not make these longer.
    std::uint64_t acceptanceWaitUs = 0; // of the byte that took the longest
    std::uint64_t answerWaitUs = 0;
    std::optional<std::uint64_t> takenUs {}; // when the last byte was seen to be taken
    bool isRefused = false; // a write whose last byte the EC did not take
};

// Something in a recording that is no whole register access.
struct Oddity
{
    std::uint64_t number = 0; // of the port access
    std::uint64_t us = 0;
    std::string text {};
    bool isBroken = true; // false: worth a line only, the channel works
};

// Finds the register accesses in what went over the ports, by the rules of the second host channel: a command
// byte to the status port, bytes to the data port, IBF until the EC has taken a byte, OBF when its answer is
// there.
class ChannelDecoder
{
public:
    // So many looks at a status with IBF set, and so many bytes out of a buffer that stays full, are no wait
    // any more: the channel is stuck.
    static constexpr std::uint64_t mostLooks = 1000;
    static constexpr std::uint64_t mostDrained = 10;

    explicit ChannelDecoder(std::uint64_t firstAccess);

    void take(const tarnRecording::EcRecord &record);
    // Nothing comes after this.
    void finish();

    [[nodiscard]] const std::vector<DecodedAccess> &accesses() const { return decoded; }
    [[nodiscard]] const std::vector<Oddity> &oddities() const { return found; }
    // What was not finished when the recording ended, because the service was stopped or the file was full.
    [[nodiscard]] const std::optional<Oddity> &unfinished() const { return cutOff; }
    [[nodiscard]] std::uint8_t otherStatusBits() const { return otherBits; }
    // Accesses of ports that the channel does not have.
    [[nodiscard]] const std::map<std::uint16_t, std::uint64_t> &unknownPorts() const { return strangers; }

private:
    enum class Phase { Idle, ReadHigh, ReadLow, Answer, WriteHigh, WriteLow, WriteValue };

    // Looks at the status, one after the other, that did not show what the host waits for.
    struct VainLooks
    {
        std::uint64_t count = 0;
        std::uint64_t firstUs = 0;
        std::uint64_t lastUs = 0;

        void add(const tarnRecording::EcRecord &record);
        // The time between the first and the last, which are forgotten.
        [[nodiscard]] std::uint64_t end();
    };

    void takeLibrary(const tarnRecording::EcRecord &record);
    void takeStatus(const tarnRecording::EcRecord &record);
    void takeCommand(const tarnRecording::EcRecord &record);
    void takeData(const tarnRecording::EcRecord &record);
    void takeAnswer(const tarnRecording::EcRecord &record);
    void lookForAnswer(const tarnRecording::EcRecord &record);
    void noteFull(const tarnRecording::EcRecord &record);
    void noteTaken(const tarnRecording::EcRecord &record);
    void begin(DecodedAccess::Kind kind, Phase next, const tarnRecording::EcRecord &record);
    void complete(std::uint8_t value, const tarnRecording::EcRecord &record);
    void noteByte(const tarnRecording::EcRecord &record);
    void breakOff(const tarnRecording::EcRecord &record, const std::string &why);
    void note(const tarnRecording::EcRecord &record, const std::string &text, bool isBroken = true);
    // The access to which the byte belongs that the EC has still to take.
    [[nodiscard]] DecodedAccess &accessOfByte() { return phase == Phase::Idle ? decoded.back() : current; }
    // "a read", or "a write of" its register as soon as the whole address is known.
    [[nodiscard]] std::string currentText() const;

    Phase phase = Phase::Idle;
    DecodedAccess current;
    std::uint64_t number; // of the access that is taken
    bool hasBegun; // false: the file before this one has the beginning of an access
    std::optional<std::uint64_t> byteSinceUs; // a byte that the EC has not been seen to take
    VainLooks full; // IBF was set
    VainLooks unanswered; // OBF was not set
    bool wasOutputFull = false; // at the last look
    std::uint64_t drained = 0; // bytes in a row, OBF being set again after each
    std::uint64_t lastUs = 0;
    std::uint8_t otherBits = 0;
    std::vector<DecodedAccess> decoded;
    std::vector<Oddity> found;
    std::optional<Oddity> cutOff;
    std::map<std::uint16_t, std::uint64_t> strangers;
};

} // namespace tarnSimulator
