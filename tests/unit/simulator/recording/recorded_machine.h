#pragma once

#include "device/recording/ec_record.h"
#include "simulator/recording/channel_decoder.h"
#include "simulator/recording/comparison.h"
#include "support/simulated_machine.h"

#include <QStringList>

#include <random>
#include <vector>

namespace tarnSimulatorTest {

// The simulated computer behind the driver's port library, with what goes over its ports recorded as the
// service's recorder does it, but on the virtual clock.
class RecordedMachine : public tarnTest::PortBackend
{
public:
    RecordedMachine() { tarnTest::setPortBackend(this); }

    void out(std::uint16_t port, std::uint8_t value) override
    {
        const std::uint64_t us = begin();
        machine.out(port, value);
        note(tarnRecording::EcRecord::Kind::Out, port, value, us);
    }
    std::uint8_t in(std::uint16_t port) override
    {
        const std::uint64_t us = begin();
        const std::uint8_t value = machine.in(port);
        note(tarnRecording::EcRecord::Kind::In, port, value, us);
        return value;
    }

    // Lets the host lose time at any place, as on a computer that has other work to do.
    void loadComputer(unsigned seed)
    {
        random.seed(seed);
        isLoaded = true;
    }

    [[nodiscard]] tarnSimulator::ChannelDecoder decode() const
    {
        tarnSimulator::ChannelDecoder decoder(1);
        for (const tarnRecording::EcRecord &record : records)
            decoder.take(record);
        decoder.finish();
        return decoder;
    }

    tarnTest::SimulatedMachine machine;
    std::vector<tarnRecording::EcRecord> records;

private:
    using Kind = tarnRecording::EcRecord::Kind;

    std::uint64_t begin()
    {
        if (const int loads = tarnTest::portLibraryLoads(); loads != loadsSeen) {
            if (loadsSeen > 0)
                note(Kind::Unload, 0, 0, nowUs());
            note(Kind::Load, 0, 0, nowUs());
            loadsSeen = loads;
        }
        loseTime();
        const std::uint64_t us = nowUs();
        loseTime(); // after the time was taken
        return us;
    }
    void loseTime()
    {
        if (isLoaded && random() % 8 == 0)
            machine.clock.sleep(tarnTest::milliseconds(random() % 100));
    }
    [[nodiscard]] std::uint64_t nowUs() const
    {
        return static_cast<std::uint64_t>(machine.clock.now().count()) * 1000;
    }
    void note(Kind kind, std::uint16_t port, std::uint8_t value, std::uint64_t us)
    {
        tarnRecording::EcRecord *last = records.empty() ? nullptr : &records.back();
        if (last && kind == Kind::In && last->kind == kind && last->port == port && last->value == value) {
            ++last->count;
            last->lastUs = us;
            return;
        }
        tarnRecording::EcRecord record;
        record.kind = kind;
        record.port = port;
        record.value = value;
        record.us = record.lastUs = us;
        record.thread = 1;
        records.push_back(record);
    }

    int loadsSeen = 0;
    bool isLoaded = false;
    std::mt19937 random;
};

// What the model says to a recording.
class ComparedRecording : public ::testing::Test
{
protected:
    using Kind = tarnSimulator::Deviation::Kind;

    void compare(double factor = 3)
    {
        const tarnSimulator::ChannelDecoder decoder = computer.decode();
        tarnSimulator::Comparison comparison(factor);
        for (const tarnSimulator::DecodedAccess &access : decoder.accesses())
            comparison.take(access);
        for (const tarnSimulator::Oddity &oddity : decoder.oddities())
            comparison.take(oddity);
        comparison.finish();
        compared = comparison.compared();
        wrong = textsOf(comparison, Kind::WrongValue);
        measured = textsOf(comparison, Kind::Measurement);
        slow = textsOf(comparison, Kind::Timing);
    }
    [[nodiscard]] QStringList all() const { return wrong + measured + slow; }

    RecordedMachine computer;
    tarnTest::SimulatedMachine &machine = computer.machine;
    std::uint64_t compared = 0;
    QStringList wrong;
    QStringList measured;
    QStringList slow;

private:
    // Each with " x" and how often, when that was more than once.
    [[nodiscard]] static QStringList textsOf(const tarnSimulator::Comparison &comparison, Kind kind)
    {
        QStringList texts;
        for (const tarnSimulator::Deviation &deviation : comparison.deviations().of(kind)) {
            QString text = QString::fromStdString(deviation.what);
            if (deviation.count > 1)
                text += QStringLiteral(" x%1").arg(deviation.count);
            texts << text;
        }
        return texts;
    }
};

} // namespace tarnSimulatorTest
