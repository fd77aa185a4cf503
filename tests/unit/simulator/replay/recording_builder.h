#pragma once

#include "device/recording/ec_record.h"

#include <cstdint>
#include <fstream>
#include <string>
#include <utility>

namespace tarnSimulatorTest {

// Makes a recording as the service would have made it, of accesses 10 us apart.
class RecordingBuilder
{
public:
    using EcRecord = tarnRecording::EcRecord;

    explicit RecordingBuilder(std::uint64_t firstAccess = 1)
    {
        tarnRecording::RecordingHeader header;
        header.startedAt = "2026-07-01T12:00:00.000Z";
        header.service = "1.40";
        header.system = "linux";
        header.firstAccess = firstAccess;
        text = lineOf(header);
    }

    RecordingBuilder &load() { return add(EcRecord::Kind::Load, 0, 0, 1); }
    RecordingBuilder &unload() { return add(EcRecord::Kind::Unload, 0, 0, 1); }
    RecordingBuilder &out(std::uint16_t port, std::uint16_t value)
    {
        return add(EcRecord::Kind::Out, port, value, 1);
    }
    RecordingBuilder &in(std::uint16_t port, std::uint16_t value, std::uint32_t count = 1)
    {
        return add(EcRecord::Kind::In, port, value, count);
    }
    RecordingBuilder &by(std::uint32_t other)
    {
        thread = other;
        return *this;
    }
    RecordingBuilder &after(std::uint64_t pauseUs)
    {
        us += pauseUs;
        return *this;
    }

    // Seven accesses, as an EC that answers at once is read.
    RecordingBuilder &read(std::uint16_t address, std::uint8_t value)
    {
        out(0x6C, 0x92).in(0x6C, 0xFC).out(0x68, address >> 8);
        return in(0x6C, 0xFC).out(0x68, address & 0xFF).in(0x6C, 0xFD).in(0x68, value);
    }
    RecordingBuilder &write(std::uint16_t address, std::uint8_t value)
    {
        out(0x6C, 0x93).in(0x6C, 0xFC).out(0x68, address >> 8);
        return in(0x6C, 0xFC).out(0x68, address & 0xFF).out(0x68, value);
    }

    void save(const std::string &path) const { std::ofstream(path, std::ios::binary) << text; }

private:
    RecordingBuilder &add(EcRecord::Kind kind, std::uint16_t port, std::uint16_t value, std::uint32_t count)
    {
        EcRecord record;
        record.kind = kind;
        record.port = port;
        record.value = value;
        record.us = us;
        record.lastUs = us + 10 * (count - 1);
        record.count = count;
        record.thread = thread;
        text += lineOf(record);
        us = record.lastUs + 10;
        return *this;
    }

    std::string text;
    std::uint64_t us = 0;
    std::uint32_t thread = 1;
};

} // namespace tarnSimulatorTest
