#pragma once

#include "unit/client/tarnctl/tool_run.h"

#include "client/client_times.h"

namespace tarnClientTest {

// An input, as at a terminal, whose lines come one after the other while watch runs.
class TypedInput : public std::istream
{
public:
    TypedInput();
    ~TypedInput() override;

    void type(const QByteArray &lines);
    // It must end before its reader's thread can.
    void end();

private:
    class Buffer;

    std::unique_ptr<Buffer> buffer;
};

// Short ones.
[[nodiscard]] tarn::ClientTimes watchTimes();
[[nodiscard]] ToolRun runWatch(const FakeService &service, const QStringList &arguments,
    const ToolInput &input, const tarn::ClientTimes &times = watchTimes());

// Has the service talk from its connection number `first` on: it answers, and it sends a notification at
// once.
void talkFrom(FakeService &service, int first);

} // namespace tarnClientTest
