#include "simulator/replay/strict_replay.h"

#include "simulator/clock.h"
#include "simulator/replay/access_text.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace tarnSimulator {

using tarnRecording::EcRecord;
using tarnRecording::Recording;

namespace {

using Kind = EcRecord::Kind;

constexpr std::chrono::seconds longestTurn {1};

} // namespace

StrictReplay::StrictReplay(
    MachineState &machine, std::unique_ptr<ReplayProgress> replayProgress, Recording recorded)
    : state(machine)
    , progress(std::move(replayProgress))
    , recording(std::move(recorded))
    , decoder(recording.header.firstAccess + machine.replay.consumed.load())
    , log(machine.log)
{ }

// An unload is noted by the load that follows, because the library is unloaded at the end of the process as
// well. The second file of a long recording begins without a load.
void StrictReplay::noteLoad()
{
    SharedLong &place = state.replay.record;
    if (next() != nullptr && next()->kind == Kind::Unload)
        place.fetch_add(1);
    if (next() != nullptr && next()->kind == Kind::Load) {
        place.fetch_add(1);
        return;
    }
    if (state.replay.consumed.load() > 0 && !progress->hasEnded())
        progress->noteDifference(differenceTo("a load of the port library"));
}

void StrictReplay::write(std::uint16_t port, std::uint8_t value)
{
    EcRecord asked;
    asked.kind = Kind::Out;
    asked.port = port;
    asked.value = value;
    if (const EcRecord *record = take(asked))
        consume(*record);
}

std::uint16_t StrictReplay::read(std::uint16_t port)
{
    EcRecord asked;
    asked.kind = Kind::In;
    asked.port = port;
    const EcRecord *record = take(asked);
    if (record == nullptr)
        return emptyBus;
    consume(*record);
    return record->value;
}

const EcRecord *StrictReplay::next() const
{
    const auto place = static_cast<std::size_t>(state.replay.record.load());
    return place < recording.records.size() ? &recording.records[place] : nullptr;
}

// The service passes bytes as signed words, so only the low byte of what it writes is the same everywhere.
const EcRecord *StrictReplay::take(const EcRecord &asked)
{
    progress->doSteps(recording.header.firstAccess - 1 + state.replay.consumed.load());
    if (progress->hasEnded()) {
        progress->noteAfterEnd();
        return nullptr;
    }
    const EcRecord *record = next();
    const bool isSame = record != nullptr && record->kind == asked.kind && record->port == asked.port
        && (asked.kind == Kind::In || (record->value & 0xFF) == asked.value);
    if (isSame) {
        awaitTurn(*record);
        return record;
    }
    progress->noteDifference(differenceTo(requestedText(asked)));
    progress->noteAfterEnd();
    return nullptr;
}

// A thread that takes the EC over from another one takes it no earlier than it did in the recording: how long
// it then keeps the others waiting decides who comes next.
void StrictReplay::awaitTurn(const EcRecord &record) const
{
    if (before == nullptr || before->thread == record.thread || record.us < before->lastUs)
        return;
    const auto gap = std::chrono::microseconds(record.us - before->lastUs);
    std::this_thread::sleep_until(served + std::min<std::chrono::microseconds>(gap, longestTurn));
}

void StrictReplay::consume(const EcRecord &record)
{
    ReplayState &replay = state.replay;
    if (replay.repeats.fetch_add(1) + 1 == record.count) {
        replay.record.fetch_add(1);
        replay.repeats.store(0);
    }
    replay.consumed.fetch_add(1);
    showRegister(record);
    progress->doSteps(recording.header.firstAccess - 1 + replay.consumed.load());
    before = &record;
    served = std::chrono::steady_clock::now();
}

void StrictReplay::showRegister(EcRecord access)
{
    access.count = 1;
    access.lastUs = access.us;
    decoder.take(access);
    for (; shown < decoder.accesses().size(); ++shown) {
        const DecodedAccess &found = decoder.accesses()[shown];
        const bool isRead = found.kind == DecodedAccess::Kind::Read;
        state.xdata[found.address].store(found.value);
        (isRead ? state.counters.reads : state.counters.writes).fetch_add(1);
        log.append(isRead ? AccessKind::Read : AccessKind::Write, found.address, found.value, steadyNowMs());
    }
}

std::string StrictReplay::differenceTo(const std::string &asked) const
{
    const std::uint64_t number = recording.header.firstAccess + state.replay.consumed.load();
    std::string text = "access " + std::to_string(number);
    text += ": recorded is " + (next() == nullptr ? std::string("the end") : accessText(*next()));
    text += ", the service made " + asked;
    text += decoder.accesses().empty() ? "; no register had been accessed before"
                                       : "; before it: " + registerAccessText(decoder.accesses().back());
    return text;
}

} // namespace tarnSimulator
