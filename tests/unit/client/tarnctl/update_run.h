#pragma once

#include "client/tarnctl/update_command.h"
#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/tool_run.h"

namespace tarnClientTest {

// One update inside the test's process, against the fake service and with that download folder.
[[nodiscard]] ToolRun runUpdate(const FakeService &service, const tarn::UpdateSetting &setting,
    const QString &file, const QString &downloadFolder, const QStringList &options = {},
    bool errorsAreTerminal = false, const tarn::ClientTimes &times = tarn::ClientTimes());

} // namespace tarnClientTest
