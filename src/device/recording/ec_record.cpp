#include "device/recording/ec_record.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tarnRecording {

namespace {

using Kind = EcRecord::Kind;
using LoadResult = EcRecord::LoadResult;

constexpr std::array<std::string_view, 4> kindWords {"load", "unload", "out", "in"};
constexpr std::array<std::string_view, 3> resultWords {"ok", "failed", "incomplete"};
constexpr std::string_view headerWord = "header";
constexpr std::string_view beforeChecksum = " *";
constexpr std::size_t checksumDigits = 4;

// CRC-16/X-25, bit by bit from the lowest.
constexpr std::array<std::uint16_t, 256> checksumTable = [] {
    std::array<std::uint16_t, 256> table {};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        auto remainder = static_cast<std::uint16_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            remainder =
                static_cast<std::uint16_t>((remainder & 1) ? (remainder >> 1) ^ 0x8408 : remainder >> 1);
        table[byte] = remainder;
    }
    return table;
}();

std::uint16_t checksum(std::string_view text)
{
    std::uint16_t sum = 0xFFFF;
    for (const char character : text)
        sum = static_cast<std::uint16_t>(
            (sum >> 8) ^ checksumTable[(sum ^ static_cast<std::uint8_t>(character)) & 0xFF]);
    return static_cast<std::uint16_t>(~sum);
}

void addNumber(std::string &line, std::uint64_t number)
{
    std::array<char, 20> digits {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    line += ' ';
    line.append(digits.data(), end);
}

void addHex(std::string &line, std::uint16_t number)
{
    constexpr std::string_view digits = "0123456789abcdef";
    for (int shift = 12; shift >= 0; shift -= 4)
        line += digits[(number >> shift) & 0xF];
}

void addPayload(std::string &line, const EcRecord &record)
{
    line += kindWords[static_cast<std::size_t>(record.kind)];
    if (record.kind == Kind::Load) {
        line += ' ';
        line += resultWords[static_cast<std::size_t>(record.result)];
    }
    if (record.isOfPort()) {
        line += ' ';
        addHex(line, record.port);
        line += ' ';
        addHex(line, record.value);
    }
    addNumber(line, record.us);
    addNumber(line, record.thread);
    if (record.count == 1)
        return;
    line += " x";
    line += std::to_string(record.count);
    addNumber(line, record.lastUs);
}

// Takes the words of a line one after the other; a word that is missing or of another form makes it fail for
// good.
class Words
{
public:
    explicit Words(std::string_view line)
        : rest(line)
    { }

    [[nodiscard]] bool isGood() const { return good; }
    [[nodiscard]] bool atEnd() const { return rest.empty(); }

    std::string_view next()
    {
        const std::size_t end = rest.find(' ');
        const std::string_view word = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        good = good && !word.empty();
        return word;
    }

    template <typename Number> Number number(std::string_view word, int base = 10)
    {
        Number value = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value, base);
        good = good && error == std::errc() && end == word.data() + word.size();
        return value;
    }
    template <typename Number> Number number() { return number<Number>(next()); }
    std::string printable()
    {
        const std::string_view word = next();
        good = good && std::all_of(word.begin(), word.end(), [](char letter) {
            return letter > ' ' && letter <= '~';
        });
        return std::string(word);
    }
    std::uint16_t hex() { return number<std::uint16_t>(next(), 16); }

    template <std::size_t count> std::size_t oneOf(const std::array<std::string_view, count> &words)
    {
        const std::string_view word = next();
        for (std::size_t index = 0; index < count; ++index) {
            if (words[index] == word)
                return index;
        }
        good = false;
        return 0;
    }

private:
    std::string_view rest;
    bool good = true;
};

// The line without its checksum; nothing when that is another.
std::optional<std::string_view> payloadOf(std::string_view line)
{
    if (line.size() <= checksumDigits + beforeChecksum.size())
        return std::nullopt;
    const std::string_view payload = line.substr(0, line.size() - checksumDigits - beforeChecksum.size());
    std::string expected(beforeChecksum);
    addHex(expected, checksum(payload));
    if (line.substr(payload.size()) != expected)
        return std::nullopt;
    return payload;
}

void readEvent(Words &words, EcRecord &record)
{
    if (record.kind == Kind::Load)
        record.result = static_cast<LoadResult>(words.oneOf(resultWords));
    if (record.isOfPort()) {
        record.port = words.hex();
        record.value = words.hex();
    }
    record.us = words.number<std::uint64_t>();
    record.thread = words.number<std::uint32_t>();
    record.lastUs = record.us;
    if (words.atEnd())
        return;
    const std::string_view count = words.next();
    record.count = words.number<std::uint32_t>(count.substr(count.starts_with('x') ? 1 : count.size()));
    record.lastUs = words.number<std::uint64_t>();
}

} // namespace

std::string checkedLine(std::string_view text)
{
    std::string line(text);
    line += beforeChecksum;
    addHex(line, checksum(text));
    return line + '\n';
}

std::string lineOf(const RecordingHeader &header)
{
    std::string text(headerWord);
    addNumber(text, static_cast<std::uint64_t>(header.version));
    text += ' ' + header.startedAt + ' ' + header.service + ' ' + header.system;
    addNumber(text, header.firstAccess);
    addNumber(text, header.clockUs);
    return checkedLine(text);
}

std::string lineOf(const EcRecord &record)
{
    std::string text;
    addPayload(text, record);
    return checkedLine(text);
}

std::optional<RecordingHeader> headerOf(std::string_view line)
{
    const auto payload = payloadOf(line);
    if (!payload)
        return std::nullopt;
    Words words(*payload);
    const bool isHeader = words.next() == headerWord;
    RecordingHeader header;
    header.version = words.number<int>();
    header.startedAt = words.printable();
    header.service = words.printable();
    header.system = words.printable();
    header.firstAccess = words.number<std::uint64_t>();
    header.clockUs = words.number<std::uint64_t>();
    if (!isHeader || !words.isGood() || !words.atEnd())
        return std::nullopt;
    return header;
}

std::optional<EcRecord> recordOf(std::string_view line)
{
    const auto payload = payloadOf(line);
    if (!payload)
        return std::nullopt;
    Words words(*payload);
    EcRecord record;
    record.kind = static_cast<Kind>(words.oneOf(kindWords));
    readEvent(words, record);
    const bool mayRepeat = record.kind == Kind::In && record.count > 1 && record.lastUs >= record.us;
    if (!words.isGood() || !words.atEnd() || (record.count != 1 && !mayRepeat))
        return std::nullopt;
    return record;
}

} // namespace tarnRecording
