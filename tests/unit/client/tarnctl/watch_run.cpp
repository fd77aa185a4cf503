#include "unit/client/tarnctl/watch_run.h"

#include "client/tarnctl/watch.h"
#include "unit/client/fake_service.h"

#include <condition_variable>
#include <mutex>
#include <sstream>

namespace tarnClientTest {

using std::chrono::milliseconds;

class TypedInput::Buffer : public std::streambuf
{
public:
    void add(const QByteArray &bytes, bool isLast)
    {
        const std::lock_guard lock(mutex);
        waiting += bytes;
        ended = isLast;
        changed.notify_all();
    }

protected:
    int_type underflow() override
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return ended || !waiting.isEmpty(); });
        if (waiting.isEmpty())
            return traits_type::eof();
        current = std::exchange(waiting, {});
        setg(current.data(), current.data(), current.data() + current.size());
        return traits_type::to_int_type(*gptr());
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    QByteArray waiting;
    QByteArray current;
    bool ended = false;
};

TypedInput::TypedInput()
    : std::istream(nullptr)
    , buffer(std::make_unique<Buffer>())
{
    rdbuf(buffer.get());
}

TypedInput::~TypedInput() = default;

void TypedInput::type(const QByteArray &lines)
{
    buffer->add(lines, false);
}

void TypedInput::end()
{
    buffer->add({}, true);
}

tarn::ClientTimes watchTimes()
{
    tarn::ClientTimes times;
    times.leavePause = milliseconds(20);
    times.quietTime = milliseconds(30);
    times.questionLimit = milliseconds(60);
    times.takenOverPause = milliseconds(200);
    times.connectionWait = milliseconds(50);
    times.unansweredPause = milliseconds(100);
    return times;
}

ToolRun runWatch(const FakeService &service, const QStringList &arguments, const ToolInput &input,
    const tarn::ClientTimes &times)
{
    const tarnctl::ToolOptions options =
        tarnctl::parseOptions(QStringList {"tarnctl", "--pipe", service.pipeName(), "watch"} + arguments)
            .options;
    std::ostringstream output;
    std::ostringstream errors;
    tarnctl::ToolStreams streams {input.stream, output, errors, input.interactive};
    ToolRun run;
    run.code = static_cast<int>(tarnctl::Watch(options, streams, times).run());
    run.output = QByteArray::fromStdString(output.str());
    run.errors = QByteArray::fromStdString(errors.str());
    return run;
}

void talkFrom(FakeService &service, int first)
{
    service.onConnection([&service, first] {
        if (service.connections() >= first)
            service.notify("changeAccessoryType", "dock");
    });
    service.onRequest([&service, first](const QJsonObject &request) {
        if (service.connections() >= first)
            service.answer(request, "data", "k_vane");
    });
}

} // namespace tarnClientTest
