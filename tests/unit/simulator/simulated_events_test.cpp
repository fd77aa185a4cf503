#include "ec_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace tarnDeviceInfos;
using tarnSimulator::AppEvent;
using tarnSimulator::eventSlots;
using tarnSimulatorTest::EcHost;

TEST(SimulatedEvents, ArmedEventWaitsForTheHostsReadAndSurvivesItsClearing)
{
    EcHost host;
    ASSERT_TRUE(host.computer.pressGpuKey());
    ASSERT_TRUE(host.write(XEC_APP_EVENT, 0)); // the host's clearing of the cycle before
    EXPECT_EQ(host.computer.peek(XEC_APP_EVENT), 0);

    EXPECT_EQ(host.read(XEC_APP_EVENT), APP_EVENT_GPU_KEY);
    ASSERT_TRUE(host.write(XEC_APP_EVENT, 0));
    EXPECT_EQ(host.read(XEC_APP_EVENT_DATA), APP_EVENT_DATA_DISENGAGE);
    EXPECT_EQ(host.read(XEC_APP_EVENT), APP_EVENT_NONE);
}

TEST(SimulatedEvents, ComeOneByOneInTheirOrder)
{
    EcHost host;
    ASSERT_TRUE(host.computer.armEvent({0x12, 0x01}));
    ASSERT_TRUE(host.computer.armEvent({0x11, 0x02}));
    ASSERT_TRUE(host.computer.armEvent({0x13, 0x03}));
    EXPECT_EQ(host.computer.armedEvents().size(), 3U);
    const AppEvent expected[] = {{0x12, 0x01}, {0x11, 0x02}, {0x13, 0x03}};
    for (const AppEvent &event : expected) {
        EXPECT_EQ(host.read(XEC_APP_EVENT), event.code);
        ASSERT_TRUE(host.write(XEC_APP_EVENT, 0));
        EXPECT_EQ(host.read(XEC_APP_EVENT_DATA), event.data);
    }
    EXPECT_TRUE(host.computer.armedEvents().empty());
}

TEST(SimulatedEvents, EventNotClearedIsShownAgainAndHoldsTheNextBack)
{
    EcHost host;
    ASSERT_TRUE(host.computer.armEvent({0x12, 0x01}));
    ASSERT_TRUE(host.computer.armEvent({0x13, 0x02}));
    EXPECT_EQ(host.read(XEC_APP_EVENT), 0x12);
    EXPECT_EQ(host.read(XEC_APP_EVENT), 0x12);
    EXPECT_EQ(host.read(XEC_APP_EVENT_DATA), 0x01);
    ASSERT_TRUE(host.write(XEC_APP_EVENT, 0));
    EXPECT_EQ(host.read(XEC_APP_EVENT), 0x13);
}

TEST(SimulatedEvents, OnlyTheEventByteDeliversThem)
{
    EcHost host;
    ASSERT_TRUE(host.computer.pressGpuKey());
    EXPECT_EQ(host.read(XEC_APP_EVENT_DATA), 0);
    EXPECT_EQ(host.computer.armedEvents().size(), 1U);
}

TEST(SimulatedEvents, RefusedReadKeepsTheEvent)
{
    EcHost host;
    ASSERT_TRUE(host.computer.pressGpuKey());
    host.computer.faults().switchOn(tarnSimulator::Fault::FailRead, XEC_APP_EVENT);
    EXPECT_EQ(host.read(XEC_APP_EVENT), std::nullopt);
    host.computer.faults().clear();
    EXPECT_EQ(host.read(XEC_APP_EVENT), APP_EVENT_GPU_KEY);
}

TEST(SimulatedEvents, QueueIsBoundedAndUsableAgain)
{
    EcHost host;
    for (std::size_t i = 0; i < eventSlots; ++i)
        ASSERT_TRUE(host.computer.armEvent({0x11, static_cast<std::uint8_t>(i)}));
    EXPECT_FALSE(host.computer.armEvent({0x12, 0}));
    EXPECT_EQ(host.read(XEC_APP_EVENT), 0x11);
    EXPECT_EQ(host.read(XEC_APP_EVENT_DATA), 0);
    EXPECT_TRUE(host.computer.armEvent({0x13, 0x77}));

    const auto waiting = host.computer.armedEvents();
    ASSERT_EQ(waiting.size(), eventSlots);
    EXPECT_EQ(waiting.front().data, 1);
    EXPECT_EQ(waiting.back().data, 0x77); // the newest is last, although it lies in the first slot
}

TEST(SimulatedEvents, ArmedByManyAndTakenByOneAreNeitherLostNorDoubled)
{
    tarnSimulator::EventQueueState shared {};
    constexpr int threadCount = 4;
    constexpr int events = 60;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&shared, thread] {
            tarnSimulator::EventQueue queue(shared);
            for (int i = 0; i < events; ++i) {
                const AppEvent event {static_cast<std::uint8_t>(thread + 1), static_cast<std::uint8_t>(i)};
                while (!queue.arm(event))
                    std::this_thread::yield();
            }
        });
    }
    tarnSimulator::EventQueue queue(shared);
    std::vector<std::uint8_t> taken[threadCount];
    for (int count = 0; count < threadCount * events;) {
        if (const auto event = queue.take()) {
            taken[event->code - 1].push_back(event->data);
            ++count;
        }
    }
    for (std::thread &thread : threads)
        thread.join();
    for (auto &data : taken) {
        std::sort(data.begin(), data.end());
        ASSERT_EQ(data.size(), static_cast<std::size_t>(events));
        EXPECT_EQ(std::unique(data.begin(), data.end()), data.end());
    }
    EXPECT_EQ(queue.take().has_value(), false);
}
