#include "simulator/recording/deviation.h"

#include <gtest/gtest.h>

using tarnSimulator::Deviation;
using tarnSimulator::DeviationList;

namespace {

using DeviationKind = Deviation::Kind;

Deviation numbered(
    std::uint64_t number, const std::string &what, DeviationKind kind = DeviationKind::WrongValue)
{
    Deviation deviation;
    deviation.kind = kind;
    deviation.what = what;
    deviation.number = number;
    return deviation;
}

} // namespace

TEST(DeviationList, CountsEqualOnes)
{
    DeviationList list;
    for (std::uint64_t number = 1; number <= 3; ++number) {
        Deviation late = numbered(number, "late", DeviationKind::Timing);
        late.longestUs = number == 2 ? 70 : 10;
        list.add(late);
        list.add(numbered(number, "late", DeviationKind::Measurement));
    }
    list.add(numbered(4, "later", DeviationKind::Timing));
    const auto timing = list.of(DeviationKind::Timing);
    ASSERT_EQ(timing.size(), 2u);
    EXPECT_EQ(timing[0].number, 1u);
    EXPECT_EQ(timing[0].count, 3u);
    EXPECT_EQ(timing[0].longestUs, 70u);
    EXPECT_EQ(timing[1].what, "later");
    EXPECT_EQ(list.of(DeviationKind::Measurement).size(), 1u);
    EXPECT_FALSE(list.has(DeviationKind::WrongValue));
    EXPECT_TRUE(list.has(DeviationKind::Measurement));
}

TEST(DeviationList, KeepsTheFirstOfTooMany)
{
    DeviationList list;
    constexpr std::uint64_t tooMany = DeviationList::mostDifferent + 30;
    for (std::uint64_t number = 0; number < tooMany; ++number)
        list.add(numbered(number, std::to_string(number)));
    EXPECT_EQ(list.of(DeviationKind::WrongValue).size(), DeviationList::mostDifferent);
    EXPECT_EQ(list.of(DeviationKind::WrongValue).back().number, DeviationList::mostDifferent - 1);
    EXPECT_EQ(list.others(DeviationKind::WrongValue), 30u);
    list.add(numbered(tooMany, "0")); // one that is kept is still counted there
    EXPECT_EQ(list.of(DeviationKind::WrongValue).front().count, 2u);
    EXPECT_EQ(list.others(DeviationKind::WrongValue), 30u);
    EXPECT_EQ(list.others(DeviationKind::Timing), 0u); // each kind has its own
    list.add(numbered(1, "slow", DeviationKind::Timing));
    EXPECT_EQ(list.of(DeviationKind::Timing).size(), 1u);
}

TEST(DeviationList, AddsOrDropsWhatWasSuspended)
{
    DeviationList list;
    constexpr std::uint64_t tooMany = DeviationList::mostDifferent + 5;
    for (std::uint64_t number = 0; number < tooMany; ++number)
        list.suspend(numbered(number, std::to_string(number)));
    EXPECT_FALSE(list.has(DeviationKind::WrongValue));
    list.dropSuspended();
    list.addSuspended();
    EXPECT_FALSE(list.has(DeviationKind::WrongValue));
    EXPECT_EQ(list.others(DeviationKind::WrongValue), 0u);

    list.add(numbered(1, "first"));
    list.suspend(numbered(2, "first"));
    for (std::uint64_t number = 0; number < tooMany; ++number)
        list.suspend(numbered(number + 3, std::to_string(number)));
    list.addSuspended();
    list.addSuspended(); // nothing twice
    EXPECT_EQ(list.of(DeviationKind::WrongValue).size(), DeviationList::mostDifferent);
    EXPECT_EQ(list.of(DeviationKind::WrongValue).front().count, 2u);
    EXPECT_EQ(list.others(DeviationKind::WrongValue), 6u);
}
