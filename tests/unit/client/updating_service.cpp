#include "unit/client/updating_service.h"

#include <QFile>

#include <utility>

namespace tarnClientTest {

UpdatingService::UpdatingService(const FirmwareFolders &firmwareFolders)
    : folders(firmwareFolders)
{
    pipe.onRequest([this](const QJsonObject &request) { handle(request); });
}

void UpdatingService::handle(const QJsonObject &request)
{
    const QString command = request.value("cmd").toString();
    present << folders.downloadNames();
    if (command == silentAt)
        return;
    if (command == leavingAt) {
        pipe.dropClient();
        return;
    }
    if (request.contains("data") && take == Take::Yes) {
        taken = readFile(folders.downloaded());
        QFile::remove(folders.downloaded());
    }
    answer(command, request);
}

void UpdatingService::answer(const QString &command, QJsonObject request)
{
    if (command == "requestMcuUpdate" && !version.isEmpty())
        request = withField(request, "mcuVer", version);
    if (beforeAnswer)
        beforeAnswer(command);
    if (command == "getAccessoryType" && !firstAccessory.isEmpty()) {
        pipe.answer(request, "data", std::exchange(firstAccessory, {}));
        return;
    }
    pipe.answer(request, "data", answers.value(command));
}

} // namespace tarnClientTest
