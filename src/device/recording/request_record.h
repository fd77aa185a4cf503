#pragma once

#include "device/recording/recording.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace tarnRecording {

// What was done to the computer from outside while a recording was made: what a client asked, and how devices
// and user answered. It stands beside the recording (ec-TIME.requests), a line each, so that it can be done
// again at the same place:
//
//   after 0 device {"name": "rtx", "kind": "display", ...}
//   after 0 saved {"file": "powermodeconfig.xml", "content": "NA=="}
//   after 0 answer 1
//   after 1234 request {"command": "setDockLedStatus", "data": "on"}
//
// A device of the host is so from then on. What the service had saved is in base64; "" stands for nothing. An
// answer is the exit code of the window that asks the user. Lines that begin with # are remarks.
//
// The number is that of the last access of the EC's ports before it; 0: before the first.
struct RequestRecord
{
    enum class Kind { Device, Saved, Answer, Request };

    std::uint64_t after = 0;
    Kind kind = Kind::Request;
    std::string text {}; // of one line: JSON, or the exit code

    bool operator==(const RequestRecord &) const = default;
};

// With its line feed.
[[nodiscard]] std::string lineOf(const RequestRecord &record);

// The file that belongs to a recording.
[[nodiscard]] std::string requestsPathOf(const std::string &recordingPath);

// Nothing when a line cannot be understood or read; then the error says which. Without a file there were
// none.
[[nodiscard]] std::optional<std::vector<RequestRecord>> readRequests(
    const std::string &path, std::string &error);

// A part of a journal, by the system's steady clock.
struct JournalSpan
{
    std::uint64_t fromUs = 0;
    std::uint64_t untilUs = std::numeric_limits<std::uint64_t>::max();
    // Another recording goes on where this one ends, so no access is missing in between.
    bool goesOn = false;
};

// What has become of a journal that was to be written.
struct WrittenRequests
{
    std::string path {}; // may be another one than was wanted
    std::string problem {}; // why nothing was written; empty: it was
    std::string objection {}; // why it is another path
    std::size_t uncovered = 0; // notes that the recording does not go on to

    explicit operator bool() const { return problem.empty(); }
};

// Notes when something was done, by the system's steady clock, and finds the place in the recording when that
// is written. One thread.
class RequestJournal
{
public:
    // To be called right before it is done.
    void note(RequestRecord::Kind kind, const std::string &text);
    void note(RequestRecord::Kind kind, const std::string &text, std::uint64_t clockUs);
    // What was so before the recording began.
    void noteStart(RequestRecord::Kind kind, const std::string &text) { note(kind, text, 0); }
    // Adds the notes of the span to the file, if it is there. What the recording does not go on to gets the
    // number of its last access, and a remark. A file that cannot be understood stays as it is, and another
    // one is written.
    [[nodiscard]] WrittenRequests write(
        const std::string &path, const Recording &recording, const JournalSpan &span = {}) const;
    // Whether the recording does.
    [[nodiscard]] bool isCoveredBy(const Recording &recording) const;

private:
    struct Note
    {
        std::uint64_t clockUs;
        RequestRecord record;
    };
    std::vector<Note> notes;
};

} // namespace tarnRecording
