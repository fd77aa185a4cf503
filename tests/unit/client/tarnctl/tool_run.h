#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <istream>
#include <memory>

namespace tarnClientTest {

class FakeService;

// One run of tarnctl inside the test's process.
struct ToolRun
{
    int code = -1;
    QByteArray output {};
    QByteArray errors {};
};

// Anything that a run may be given beside its arguments.
struct ToolInput
{
    // Null: an input that ends at once.
    std::shared_ptr<std::istream> stream {};
    bool interactive = false;
};

[[nodiscard]] ToolRun runTool(const QStringList &arguments, const ToolInput &input = {});
// The same against the fake service's pipe.
[[nodiscard]] ToolRun runTool(
    const FakeService &service, const QStringList &arguments, const ToolInput &input = {});
[[nodiscard]] ToolInput typed(const QByteArray &lines, bool interactive = false);

} // namespace tarnClientTest
