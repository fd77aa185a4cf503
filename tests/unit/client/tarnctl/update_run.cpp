#include "unit/client/tarnctl/update_run.h"

#include <sstream>

namespace tarnClientTest {

ToolRun runUpdate(const FakeService &service, const tarn::UpdateSetting &setting, const QString &file,
    const QString &downloadFolder, const QStringList &options, bool errorsAreTerminal,
    const tarn::ClientTimes &times)
{
    const tarnctl::ParsedOptions parsed =
        tarnctl::parseOptions(QStringList {"tarnctl", "--pipe", service.pipeName()} + options);
    std::ostringstream output;
    std::ostringstream errors;
    tarnctl::ToolStreams streams {
        std::make_shared<std::istringstream>(), output, errors, false, errorsAreTerminal};
    ToolRun run;
    tarnctl::UpdateCommand command(parsed.options, streams, setting, downloadFolder, times);
    run.code = static_cast<int>(command.run(file));
    run.output = QByteArray::fromStdString(output.str());
    run.errors = QByteArray::fromStdString(errors.str());
    return run;
}

} // namespace tarnClientTest
