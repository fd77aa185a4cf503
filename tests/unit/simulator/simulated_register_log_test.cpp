#include "simulator/machine_state.h"
#include "simulator/register_log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

using tarnSimulator::AccessKind;
using tarnSimulator::logEntries;
using tarnSimulator::RegisterLog;
using tarnSimulator::RegisterLogState;

namespace {

void appendNumbered(RegisterLog &log, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t number = log.end() + 1;
        log.append(number % 2 == 0 ? AccessKind::Read : AccessKind::Write, static_cast<std::uint16_t>(number),
            static_cast<std::uint8_t>(number), number);
    }
}

bool isNumbered(const tarnSimulator::RegisterAccess &access)
{
    return access.timeMs == access.number && access.address == static_cast<std::uint16_t>(access.number)
        && access.value == static_cast<std::uint8_t>(access.number)
        && access.kind == (access.number % 2 == 0 ? AccessKind::Read : AccessKind::Write);
}

} // namespace

TEST(SimulatedRegisterLog, IsEmptyAtFirst)
{
    const auto state = std::make_unique<RegisterLogState>();
    const RegisterLog log(*state);
    const auto reading = log.readAfter(0);
    EXPECT_TRUE(reading.accesses.empty());
    EXPECT_EQ(reading.cursor, 0U);
    EXPECT_EQ(log.end(), 0U);
}

TEST(SimulatedRegisterLog, CursorContinuesWhereItStopped)
{
    const auto state = std::make_unique<RegisterLogState>();
    RegisterLog log(*state);
    appendNumbered(log, 3);
    const auto first = log.readAfter(0);
    ASSERT_EQ(first.accesses.size(), 3U);
    EXPECT_EQ(first.accesses[0].number, 1U);
    EXPECT_TRUE(log.readAfter(first.cursor).accesses.empty());

    appendNumbered(log, 2);
    const auto second = log.readAfter(first.cursor);
    ASSERT_EQ(second.accesses.size(), 2U);
    EXPECT_EQ(second.accesses[0].number, 4U);
    EXPECT_EQ(second.lost, 0U);
    for (const auto &access : second.accesses)
        EXPECT_TRUE(isNumbered(access));
}

TEST(SimulatedRegisterLog, KeepsTheNewestAndCountsTheLost)
{
    const auto state = std::make_unique<RegisterLogState>();
    RegisterLog log(*state);
    appendNumbered(log, 10);
    const std::uint64_t cursor = log.readAfter(0).cursor;
    appendNumbered(log, logEntries + 5);

    const auto reading = log.readAfter(cursor);
    EXPECT_EQ(reading.lost, 5U);
    ASSERT_EQ(reading.accesses.size(), logEntries);
    EXPECT_EQ(reading.accesses.front().number, 16U);
    EXPECT_EQ(reading.accesses.back().number, logEntries + 15);
    for (const auto &access : reading.accesses)
        EXPECT_TRUE(isNumbered(access));
    const auto fromStart = log.readAfter(0);
    EXPECT_EQ(fromStart.accesses.size(), logEntries);
    EXPECT_EQ(fromStart.lost, 0U);
}

TEST(SimulatedRegisterLog, CursorOfAnotherMachineBeginsAgain)
{
    const auto state = std::make_unique<RegisterLogState>();
    RegisterLog log(*state);
    appendNumbered(log, 2);
    EXPECT_EQ(log.readAfter(500).accesses.size(), 2U);
}

TEST(SimulatedRegisterLog, EntryOfAKilledWriterIsPassedOver)
{
    const auto state = std::make_unique<RegisterLogState>();
    RegisterLog log(*state);
    appendNumbered(log, 2);
    state->lastStamp.fetch_add(1); // number 3 is taken and never written
    const auto waiting = log.readAfter(0);
    EXPECT_EQ(waiting.accesses.size(), 2U);
    EXPECT_EQ(waiting.cursor, 2U);

    appendNumbered(log, 1);
    const auto reading = log.readAfter(waiting.cursor);
    ASSERT_EQ(reading.accesses.size(), 1U);
    EXPECT_EQ(reading.accesses[0].number, 4U);
    EXPECT_EQ(reading.lost, 1U);
}

TEST(SimulatedRegisterLog, ReaderBesideAFastWriterNeverSeesHalfAnEntry)
{
    const auto state = std::make_unique<RegisterLogState>();
    constexpr std::uint64_t accesses = logEntries * 20;
    std::thread writer([&state] {
        RegisterLog log(*state);
        appendNumbered(log, accesses);
    });
    const RegisterLog log(*state);
    std::uint64_t cursor = 0;
    std::uint64_t seen = 0;
    std::uint64_t lost = 0;
    std::uint64_t wrong = 0;
    while (cursor < accesses) {
        const auto reading = log.readAfter(cursor);
        const std::uint64_t skipped = reading.cursor - cursor - reading.accesses.size();
        wrong += cursor != 0 && reading.lost != skipped ? 1 : 0;
        lost += skipped;
        for (const auto &access : reading.accesses)
            wrong += isNumbered(access) ? 0 : 1;
        seen += reading.accesses.size();
        cursor = reading.cursor;
    }
    writer.join();
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(seen + lost, accesses);
}

// The writer overwrites the oldest entry next, so a reader that reads only this entry collides with it often.
TEST(SimulatedRegisterLog, EntryBeingOverwrittenIsNeverTakenForTheOldOne)
{
    const auto state = std::make_unique<RegisterLogState>();
    std::atomic<bool> enough = false;
    std::thread writer([&state, &enough] {
        RegisterLog log(*state);
        while (!enough.load())
            appendNumbered(log, 64);
    });
    const RegisterLog log(*state);
    const auto began = std::chrono::steady_clock::now();
    const auto isTimeLeft = [&began](std::chrono::seconds time) {
        return std::chrono::steady_clock::now() < began + time;
    };
    std::uint64_t wrong = 0;
    std::uint64_t taken = 0;
    std::uint64_t encounters = 0; // looks between which the writer has moved on
    for (std::uint64_t last = 0;
         encounters < 200000 && isTimeLeft(std::chrono::seconds(taken > 0 ? 1 : 30));) {
        const std::uint64_t end = log.end();
        const auto access = end < logEntries ? std::nullopt : log.find(end - logEntries + 1);
        wrong += access && !isNumbered(*access) ? 1 : 0;
        taken += access ? 1 : 0;
        encounters += end != last ? 1 : 0;
        last = end;
    }
    enough.store(true);
    writer.join();
    EXPECT_GT(taken, 0U);
    EXPECT_EQ(wrong, 0U);
}
