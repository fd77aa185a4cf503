#pragma once

#include "unit/client/fake_service.h"
#include "unit/client/firmware_folders.h"

#include <QMap>

namespace tarnClientTest {

enum class Take { Yes, No };

// A service with an update in it, as far as a client sees one.
class UpdatingService
{
public:
    explicit UpdatingService(const FirmwareFolders &firmwareFolders);

    FakeService pipe;

    QMap<QString, QString> answers {{"getAccessoryType", "k_vane"}, {"getMcuVersion", "2.05"},
        {"requestMcuUpdate", "successed"}, {"requestEcUpdate", "successed"}};
    QString version = "3.14";
    QString firstAccessory {}; // what the first question gets; empty: as all others
    QString silentAt {};
    QString leavingAt {};
    Take take = Take::Yes;
    // Called with the command before it is answered.
    std::function<void(const QString &command)> beforeAnswer {};

    // What lay in the download folder at each request.
    QList<QStringList> present;
    QByteArray taken;

private:
    void handle(const QJsonObject &request);
    void answer(const QString &command, QJsonObject request);

    const FirmwareFolders &folders;
};

inline const QStringList mcuCommands {"getMcuVersion", "getAccessoryType", "requestMcuUpdate"};
inline const QStringList ecCommands {"requestEcUpdate"};
inline const QStringList placed {"fw.bin"};

} // namespace tarnClientTest
