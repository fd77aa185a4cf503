#pragma once

#include "client/firmware_update.h"
#include "fake_service.h"
#include "tool_run.h"

#include <QTemporaryDir>

namespace tarnClientTest {

// A user's folder with a firmware file, and a download folder beside it.
class FirmwareFolders
{
public:
    FirmwareFolders();

    [[nodiscard]] QString firmware() const;
    [[nodiscard]] QString downloads() const;
    // Where the file of this name lies for the service.
    [[nodiscard]] QString downloaded(const QString &name = QStringLiteral("fw.bin")) const;
    [[nodiscard]] QStringList downloadNames() const;

private:
    QTemporaryDir folder;
};

void writeFile(const QString &path, const QByteArray &content);
// Empty when there is none.
[[nodiscard]] QByteArray readFile(const QString &path);

// One update inside the test's process, against the fake service and with that download folder.
[[nodiscard]] ToolRun runUpdate(const FakeService &service, const tarnClient::UpdatePlan &plan,
    const QString &file, const tarnClient::DownloadPlace &place, const QStringList &options = {},
    bool errorsAreTerminal = false);

} // namespace tarnClientTest
