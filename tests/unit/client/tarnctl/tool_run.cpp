#include "unit/client/tarnctl/tool_run.h"

#include "client/tarnctl/tarnctl.h"
#include "unit/client/fake_service.h"

#include <sstream>

namespace tarnClientTest {

ToolRun runTool(const QStringList &arguments, const ToolInput &input)
{
    const std::shared_ptr<std::istream> stream =
        input.stream ? input.stream : std::make_shared<std::istringstream>();
    std::ostringstream output;
    std::ostringstream errors;
    ToolRun run;
    run.code = tarnctl::runTarnctl(
        QStringList {QStringLiteral("tarnctl")} + arguments, {stream, output, errors, input.interactive});
    run.output = QByteArray::fromStdString(output.str());
    run.errors = QByteArray::fromStdString(errors.str());
    return run;
}

ToolRun runTool(const FakeService &service, const QStringList &arguments, const ToolInput &input)
{
    return runTool(QStringList {QStringLiteral("--pipe"), service.pipeName()} + arguments, input);
}

ToolInput typed(const QByteArray &lines, bool interactive)
{
    return {std::make_shared<std::istringstream>(lines.toStdString()), interactive};
}

} // namespace tarnClientTest
