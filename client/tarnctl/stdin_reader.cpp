#include "stdin_reader.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

namespace tarnctl {

namespace {

// A limit, so that a large input waits in the pipe and not in memory.
constexpr std::size_t mostWaitingLines = 256;

// Too short to be noticed while typing.
constexpr std::chrono::milliseconds pollPeriod(30);

std::atomic<int> readingThreads = 0;

} // namespace

// Shared with the thread, which may outlive the reader.
struct StdinReader::Shared
{
    std::mutex mutex;
    std::condition_variable roomForLines;
    std::deque<std::string> lines;
    bool ended = false;
    // The StdinReader has been destroyed.
    bool unwanted = false;

    // False when the StdinReader has been destroyed.
    bool add(std::string line)
    {
        std::unique_lock lock(mutex);
        roomForLines.wait(lock, [this] { return unwanted || lines.size() < mostWaitingLines; });
        if (unwanted)
            return false;
        lines.push_back(std::move(line));
        return true;
    }

    void end()
    {
        const std::lock_guard lock(mutex);
        ended = true;
    }
};

StdinReader::StdinReader(std::shared_ptr<std::istream> input, QObject *parent)
    : QObject(parent)
    , shared(std::make_shared<Shared>())
{
    connect(&poll, &QTimer::timeout, this, &StdinReader::reportChange);
    poll.start(pollPeriod);
    ++readingThreads;
    thread = std::thread([shared = shared, stream = std::move(input)] {
        std::string line;
        while (std::getline(*stream, line) && shared->add(std::move(line)))
            line.clear();
        shared->end();
        --readingThreads;
    });
}

StdinReader::~StdinReader()
{
    bool ended = false;
    {
        const std::lock_guard lock(shared->mutex);
        shared->unwanted = true;
        ended = shared->ended;
    }
    shared->roomForLines.notify_all();
    if (ended)
        thread.join();
    else
        thread.detach();
}

std::optional<QString> StdinReader::takeLine()
{
    std::string line;
    {
        const std::lock_guard lock(shared->mutex);
        if (shared->lines.empty())
            return std::nullopt;
        line = std::move(shared->lines.front());
        shared->lines.pop_front();
    }
    shared->roomForLines.notify_all();
    return QString::fromStdString(line);
}

std::optional<QString> StdinReader::nextLine() const
{
    const std::lock_guard lock(shared->mutex);
    if (shared->lines.empty())
        return std::nullopt;
    return QString::fromStdString(shared->lines.front());
}

bool StdinReader::isExhausted() const
{
    const std::lock_guard lock(shared->mutex);
    return shared->ended && shared->lines.empty();
}

void StdinReader::reportChange()
{
    bool ended = false;
    bool hasLines = false;
    {
        const std::lock_guard lock(shared->mutex);
        ended = shared->ended;
        hasLines = !shared->lines.empty();
    }
    if (ended)
        poll.stop();
    if (ended || hasLines)
        emit changed();
}

bool StdinReader::hasThreadLeftBehind()
{
    return readingThreads > 0;
}

} // namespace tarnctl
