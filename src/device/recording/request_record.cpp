#include "device/recording/request_record.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace tarnRecording {

namespace {

constexpr std::array<std::string_view, 4> kindWords {"device", "saved", "answer", "request"};
constexpr std::string_view firstWord = "after ";
constexpr auto largestFile = std::uintmax_t {16} * 1024 * 1024; // bytes

std::optional<RequestRecord> requestOf(std::string_view line)
{
    if (!line.starts_with(firstWord))
        return std::nullopt;
    line.remove_prefix(firstWord.size());
    RequestRecord record;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), record.after);
    if (error != std::errc() || end == line.data() + line.size() || *end != ' ')
        return std::nullopt;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
    const std::size_t blank = line.find(' ');
    const auto *const kind = std::find(kindWords.begin(), kindWords.end(), line.substr(0, blank));
    if (blank == std::string_view::npos || blank + 1 == line.size() || kind == kindWords.end())
        return std::nullopt;
    record.kind = static_cast<RequestRecord::Kind>(kind - kindWords.begin());
    record.text = line.substr(blank + 1);
    return record;
}

// How many accesses came before a moment, with those of the files before this one.
std::uint64_t accessesBefore(const Recording &recording, std::uint64_t clockUs)
{
    std::uint64_t number = recording.header.firstAccess - 1;
    for (const EcRecord &record : recording.records) {
        if (recording.header.clockUs + record.us > clockUs)
            break;
        if (!record.isOfPort())
            continue;
        if (recording.header.clockUs + record.lastUs <= clockUs) {
            number += record.count;
            continue;
        }
        // Reads that repeat are taken for evenly spread.
        const std::uint64_t passed = clockUs - recording.header.clockUs - record.us;
        return number + 1 + passed * (record.count - 1) / (record.lastUs - record.us);
    }
    return number;
}

// The moment of the last access; without one nothing has come.
std::uint64_t endOf(const Recording &recording)
{
    return recording.records.empty() ? 0 : recording.header.clockUs + recording.records.back().lastUs;
}

// What a file has to which is added.
struct EarlierRequests
{
    std::string text; // with its remarks
    std::uint64_t last = 0;
};

// A file that somebody has damaged is not worth less for that, so the next free name is taken.
EarlierRequests findTarget(const std::string &path, WrittenRequests &written)
{
    constexpr std::string_view ending = ".requests";
    const std::string base = path.ends_with(ending) ? path.substr(0, path.size() - ending.size()) : path;
    written.path = path;
    for (int number = 2;; ++number) {
        std::string error;
        const auto records = readRequests(written.path, error);
        if (records) {
            std::ifstream file(nativePath(written.path), std::ios::binary);
            EarlierRequests earlier {std::string(std::istreambuf_iterator<char>(file), {}), 0};
            if (!earlier.text.empty() && !earlier.text.ends_with('\n'))
                earlier.text += '\n';
            if (!records->empty())
                earlier.last = records->back().after;
            return earlier;
        }
        if (written.objection.empty())
            written.objection = error;
        written.path = base + '-' + std::to_string(number) + std::string(ending);
    }
}

// Why not; empty when it was written. It appears at once as a whole.
std::string replaceFile(const std::filesystem::path &target, const std::string &content)
{
    const std::filesystem::path part = std::filesystem::path(target) += ".part";
    std::ofstream file(part, std::ios::binary);
    file << content;
    file.close();
    std::error_code problem;
    const bool isMade = std::filesystem::is_regular_file(part, problem);
    if (file.good()) {
        std::filesystem::rename(part, target, problem);
        if (!problem)
            return {};
    }
    const std::string reason = problem ? ": " + problem.message() : std::string();
    if (isMade)
        std::filesystem::remove(part, problem);
    const std::u8string name = target.u8string();
    return '"' + std::string(name.begin(), name.end()) + "\" cannot be written" + reason;
}

} // namespace

std::string lineOf(const RequestRecord &record)
{
    return std::string(firstWord) + std::to_string(record.after) + ' '
        + std::string(kindWords.at(static_cast<std::size_t>(record.kind))) + ' ' + record.text + '\n';
}

std::string requestsPathOf(const std::string &recordingPath)
{
    constexpr std::string_view ending = ".recording";
    const bool hasEnding = recordingPath.ends_with(ending);
    return recordingPath.substr(0, recordingPath.size() - (hasEnding ? ending.size() : 0)) + ".requests";
}

std::optional<std::vector<RequestRecord>> readRequests(const std::string &path, std::string &error)
{
    const std::filesystem::path native = nativePath(path);
    std::error_code ignored;
    if (!std::filesystem::exists(native, ignored))
        return std::vector<RequestRecord>();
    std::ifstream file(native, std::ios::binary);
    if (!file || !std::filesystem::is_regular_file(native, ignored)) {
        error = "\"" + path + "\" cannot be read";
        return std::nullopt;
    }
    if (std::filesystem::file_size(native, ignored) > largestFile) {
        error = "\"" + path + "\" is larger than what stands beside a recording can be";
        return std::nullopt;
    }
    std::vector<RequestRecord> records;
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.empty() || line.starts_with('#'))
            continue;
        const std::optional<RequestRecord> record = requestOf(line);
        const bool isInOrder = record && (records.empty() || records.back().after <= record->after);
        if (!isInOrder) {
            error = "\"" + path + "\", line " + std::to_string(number) + ", cannot be understood"
                + (record ? ": it comes before the line above" : "");
            return std::nullopt;
        }
        records.push_back(*record);
    }
    return records;
}

void RequestJournal::note(RequestRecord::Kind kind, const std::string &text)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto nowUs = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
    note(kind, text, static_cast<std::uint64_t>(nowUs));
}

void RequestJournal::note(RequestRecord::Kind kind, const std::string &text, std::uint64_t clockUs)
{
    notes.push_back({clockUs, {0, kind, text}});
}

WrittenRequests RequestJournal::write(
    const std::string &path, const Recording &recording, const JournalSpan &span) const
{
    WrittenRequests written;
    const EarlierRequests earlier = findTarget(path, written);
    std::string lines = earlier.text;
    std::uint64_t last = earlier.last; // the lines are in the order of their numbers
    const std::uint64_t endUs = endOf(recording);
    for (const Note &note : notes) {
        if (note.clockUs < span.fromUs || note.clockUs >= span.untilUs)
            continue;
        RequestRecord record = note.record;
        record.after = std::max(accessesBefore(recording, note.clockUs), last);
        last = record.after;
        lines += lineOf(record);
        if (!span.goesOn && note.clockUs > endUs)
            ++written.uncovered;
    }
    if (written.uncovered > 0)
        lines += "# the recording ends before the last " + std::to_string(written.uncovered) + " of these\n";
    written.problem = replaceFile(nativePath(written.path), lines);
    return written;
}

bool RequestJournal::isCoveredBy(const Recording &recording) const
{
    if (notes.empty())
        return true;
    return endOf(recording) >= notes.back().clockUs;
}

} // namespace tarnRecording
