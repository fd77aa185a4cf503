#include "simulator/recording/channel_decoder.h"

#include <gtest/gtest.h>

using namespace tarnSimulator;
using tarnRecording::EcRecord;

namespace {

constexpr std::uint16_t statusPort = 0x6C;
constexpr std::uint16_t dataPort = 0x68;
constexpr std::uint8_t obf = 0x01;
constexpr std::uint8_t ibf = 0x02;

class DecodedChannel : public ::testing::Test
{
protected:
    // Each access is 10 us after the one before.
    void out(std::uint16_t port, std::uint16_t value) { take(EcRecord::Kind::Out, port, value); }
    void in(std::uint16_t port, std::uint16_t value, std::uint32_t count = 1)
    {
        take(EcRecord::Kind::In, port, value, count);
    }
    void take(EcRecord::Kind kind, std::uint16_t port, std::uint16_t value, std::uint32_t count = 1)
    {
        EcRecord record;
        record.kind = kind;
        record.port = port;
        record.value = value;
        record.us = us;
        record.count = count;
        record.lastUs = us + 10 * (count - 1);
        record.thread = 3;
        us += 10 * count;
        decoder.take(record);
    }
    void readRegister(std::uint16_t address, std::uint8_t value)
    {
        out(statusPort, 0x92);
        in(statusPort, ibf);
        in(statusPort, 0);
        out(dataPort, address >> 8);
        in(statusPort, 0);
        out(dataPort, address & 0xFF);
        in(statusPort, 0, 4);
        in(statusPort, obf);
        in(dataPort, value);
    }
    [[nodiscard]] std::vector<std::string> oddities() const
    {
        std::vector<std::string> texts;
        for (const Oddity &oddity : decoder.oddities())
            texts.push_back(std::to_string(oddity.number) + ": " + oddity.text);
        return texts;
    }

    std::uint64_t us = 1000;
    ChannelDecoder decoder {1};
};

} // namespace

TEST_F(DecodedChannel, HasReadsWithTheirTimes)
{
    readRegister(0x04A8, 0x55);
    decoder.finish();
    ASSERT_EQ(decoder.accesses().size(), 1u);
    const DecodedAccess &access = decoder.accesses().front();
    EXPECT_EQ(access.kind, DecodedAccess::Kind::Read);
    EXPECT_EQ(access.address, 0x04A8);
    EXPECT_EQ(access.value, 0x55);
    EXPECT_EQ(access.number, 1u);
    EXPECT_EQ(access.startUs, 1000u);
    EXPECT_EQ(access.endUs, 1110u);
    EXPECT_EQ(access.thread, 3u);
    EXPECT_EQ(access.acceptanceUs, (std::vector<std::uint64_t> {20, 10, 10}));
    EXPECT_EQ(access.answerUs, 50u);
    EXPECT_EQ(access.addressUs, 1050u);
    EXPECT_EQ(access.answerWaitUs, 30u); // from the first of four looks to the last
    EXPECT_EQ(access.acceptanceWaitUs, 0u);
    EXPECT_FALSE(decoder.unfinished());
    EXPECT_TRUE(oddities().empty());
}

TEST_F(DecodedChannel, HasWritesWithTheAcceptanceOfTheLastByte)
{
    for (const int value : {0x93, -1, 0x04, -1, 0xA8, -1, 0x17, -1}) {
        if (value < 0)
            in(statusPort, 0);
        else
            out(value == 0x93 ? statusPort : dataPort, static_cast<std::uint16_t>(value));
    }
    readRegister(0x0400, 1);
    ASSERT_EQ(decoder.accesses().size(), 2u);
    const DecodedAccess &access = decoder.accesses().front();
    EXPECT_EQ(access.kind, DecodedAccess::Kind::Write);
    EXPECT_EQ(access.address, 0x04A8);
    EXPECT_EQ(access.value, 0x17);
    EXPECT_EQ(access.acceptanceUs.size(), 4u);
    EXPECT_FALSE(access.answerUs);
    EXPECT_EQ(decoder.accesses().back().number, 9u);
}

TEST_F(DecodedChannel, TellsWhatIsBroken)
{
    out(statusPort, 0x92);
    out(dataPort, 4);
    readRegister(0x04A8, 1); // before the first one was finished
    out(dataPort, 7);
    out(statusPort, 0x99);
    out(statusPort, 0x93);
    in(dataPort, 0);
    out(statusPort, 0x92);
    decoder.finish();
    EXPECT_EQ(oddities(),
        (std::vector<std::string> {"3: a read was not finished: another command began",
            "15: byte 0x07 without a command", "16: unknown command 0x99",
            "18: a write was not finished: the data port was read"}));
    EXPECT_EQ(decoder.accesses().size(), 1u);
    ASSERT_TRUE(decoder.unfinished());
    EXPECT_EQ(decoder.unfinished()->text, "the recording ends in the middle of a read");
    EXPECT_FALSE(decoder.unfinished()->isBroken);
}

TEST_F(DecodedChannel, CountsOtherPortsAndStatusBits)
{
    out(0x80, 1);
    in(0x62, 0xFF, 5);
    in(statusPort, 0x54);
    in(statusPort, 0x88 | obf);
    EXPECT_EQ(decoder.unknownPorts(), (std::map<std::uint16_t, std::uint64_t> {{0x62, 5}, {0x80, 1}}));
    EXPECT_EQ(decoder.otherStatusBits(), 0xDC);
    readRegister(0x0400, 1);
    EXPECT_EQ(decoder.accesses().front().number, 9u);
}

// The host empties the buffer before a command: no access, and nothing odd.
TEST_F(DecodedChannel, LeavesDrainingAlone)
{
    in(statusPort, obf);
    in(dataPort, 0x42);
    readRegister(0x0400, 1);
    EXPECT_EQ(decoder.accesses().size(), 1u);
    EXPECT_TRUE(oddities().empty());
}

TEST_F(DecodedChannel, NoticesAByteThatIsNeverTaken)
{
    out(statusPort, 0x93);
    in(statusPort, 0);
    out(dataPort, 0x04);
    in(statusPort, 0);
    out(dataPort, 0xA9);
    in(statusPort, ibf, 400);
    in(statusPort, ibf | 0x80, 600);
    readRegister(0x04A8, 1);
    decoder.finish();
    EXPECT_EQ(oddities(),
        std::vector<std::string>(
            {"406: IBF stayed set through 1000 looks, in a write of 0x04A9 EC_POWERMODE_PL2"}));
    EXPECT_TRUE(decoder.oddities().front().isBroken);
    EXPECT_EQ(decoder.accesses().size(), 1u);
}

// The last byte of a write is looked after when the next access begins.
TEST_F(DecodedChannel, NoticesAValueThatIsNeverTaken)
{
    for (const int value : {0x04, 0xA8, 0x17}) {
        if (value == 0x04)
            out(statusPort, 0x93);
        in(statusPort, 0);
        out(dataPort, static_cast<std::uint16_t>(value));
    }
    in(statusPort, ibf, 999);
    EXPECT_TRUE(oddities().empty());
    in(statusPort, ibf);
    ASSERT_EQ(decoder.accesses().size(), 1u);
    EXPECT_TRUE(decoder.accesses().front().isRefused);
    EXPECT_EQ(oddities(), std::vector<std::string>({"1007: IBF stayed set through 1000 looks"}));
    in(statusPort, ibf, 1000); // the next access gives up, too
    EXPECT_EQ(oddities().size(), 2u);
}

TEST_F(DecodedChannel, NoticesABufferThatStaysFull)
{
    for (int drain = 0; drain < 9; ++drain) {
        in(statusPort, obf);
        in(dataPort, 0x42);
    }
    EXPECT_TRUE(oddities().empty());
    in(statusPort, 0);
    for (int drain = 0; drain < 30; ++drain) {
        in(statusPort, obf);
        in(dataPort, 0x42);
    }
    readRegister(0x0400, 1);
    EXPECT_EQ(
        oddities(), std::vector<std::string>({"39: OBF stayed set, though the data port was read 10 times"}));
    EXPECT_EQ(decoder.accesses().size(), 1u);
}

TEST_F(DecodedChannel, NoticesAReadThatIsNeverAnswered)
{
    out(statusPort, 0x92);
    in(statusPort, 0);
    out(dataPort, 0x04);
    in(statusPort, 0);
    out(dataPort, 0xFE);
    in(statusPort, 0, 1000);
    take(EcRecord::Kind::Unload, 0, 0);
    take(EcRecord::Kind::Load, 0, 0);
    readRegister(0x0400, 1);
    decoder.finish();
    EXPECT_EQ(oddities(),
        std::vector<std::string>({"1006: a read of 0x04FE EC_TARN_POWER_MODE was not finished: no answer in "
                                  "1000 looks, then the port library was unloaded"}));
    EXPECT_EQ(decoder.accesses().size(), 1u);
}

TEST_F(DecodedChannel, NoticesAReloadInTheMiddle)
{
    take(EcRecord::Kind::Load, 0, 0);
    readRegister(0x0400, 1);
    take(EcRecord::Kind::Unload, 0, 0); // between two accesses it breaks nothing
    take(EcRecord::Kind::Load, 0, 0);
    ASSERT_EQ(oddities(), std::vector<std::string>({"13: the port library was unloaded"}));
    EXPECT_FALSE(decoder.oddities().front().isBroken);
    out(statusPort, 0x93);
    take(EcRecord::Kind::Unload, 0, 0);
    ASSERT_EQ(oddities().size(), 2u);
    EXPECT_EQ(oddities().back(), "14: a write was not finished: the port library was unloaded");
    EXPECT_TRUE(decoder.oddities().back().isBroken);
    EcRecord failed;
    failed.kind = EcRecord::Kind::Load;
    failed.result = EcRecord::LoadResult::Failed;
    decoder.take(failed);
    EXPECT_EQ(oddities().back(), "14: the port library could not be loaded");
}

TEST(ChannelDecoderOfALaterFile, IsNotDisturbedByTheEndOfAnAccess)
{
    ChannelDecoder decoder(5000);
    EcRecord byte;
    byte.kind = EcRecord::Kind::Out;
    byte.port = dataPort;
    decoder.take(byte);
    EXPECT_TRUE(decoder.oddities().empty());
    byte.port = statusPort;
    byte.value = 0x93;
    decoder.take(byte);
    decoder.finish();
    EXPECT_TRUE(decoder.oddities().empty());
    ASSERT_TRUE(decoder.unfinished());
    EXPECT_EQ(decoder.unfinished()->text, "the recording ends in the middle of a write");
}
