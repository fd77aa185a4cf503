#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The form of a recording of the EC's ports: text, a record a line. It is read by tools that have neither Qt
// nor the service, so it uses the standard library only.
namespace tarnRecording {

inline constexpr int formatVersion = 1;

// The first line of a recording:
//
// clang-format off
//   header 1 2026-11-23T03:12:00.123+01:00 1.40 winnt 5000 81234567
//
// the version of the form, local time, service, system, the number of the first access, and the system's
// steady clock at time 0.
// clang-format on
struct RecordingHeader
{
    int version = formatVersion;
    std::string startedAt {}; // these have printable ASCII and no blanks
    std::string service {};
    std::string system {};
    std::uint64_t firstAccess = 1;
    std::uint64_t clockUs = 0; // by which other processes place what they did

    bool operator==(const RecordingHeader &) const = default;
};

// Each other line of a recording:
//
// clang-format off
//   load ok 120 1                the port library: ok, failed, or incomplete without its functions; time and
//                                thread
//   unload 5120 1
//   out 006c 0080 130 2          port and value in hexadecimal; time and thread
//   in 006c 0015 150 2           the value that was returned
//   in 006c 0001 160 2 x12 220   twelve equal reads in a row, the last one at this time
// clang-format on
//
// Values have the 16 bits that the functions take and give. Times are microseconds of a clock that is never
// set, since the recording began; threads count from 1 in the order in which they come.
//
// A recording has millions of them, so they are kept small.
struct EcRecord
{
    enum class Kind : std::uint8_t { Load, Unload, Out, In };
    enum class LoadResult : std::uint8_t { Ok, Failed, Incomplete };

    Kind kind = Kind::In;
    std::uint16_t port = 0; // of Out and In, as value, count and lastUs
    std::uint16_t value = 0;
    std::uint64_t us = 0; // of the first access
    std::uint64_t lastUs = 0; // of the last of equal reads
    std::uint32_t count = 1; // of equal reads
    std::uint32_t thread = 0;
    LoadResult result = LoadResult::Ok; // of Load

    // Else it is one of the port library.
    [[nodiscard]] bool isOfPort() const { return kind == Kind::Out || kind == Kind::In; }

    bool operator==(const EcRecord &) const = default;
};

// Text that has no line feed, with its checksum and a line feed.
[[nodiscard]] std::string checkedLine(std::string_view text);
// The line, with its checksum and its line feed.
[[nodiscard]] std::string lineOf(const RecordingHeader &header);
[[nodiscard]] std::string lineOf(const EcRecord &record);

// What a line without its line feed says; nothing when it is damaged or of another form.
[[nodiscard]] std::optional<RecordingHeader> headerOf(std::string_view line);
[[nodiscard]] std::optional<EcRecord> recordOf(std::string_view line);

} // namespace tarnRecording
