#pragma once

#include "update_run.h"

#include <gtest/gtest.h>

#include <QFile>

#include <csignal>
#include <utility>

namespace tarnClientTest {

enum class Take { Yes, No };

// A service with an update in it, as far as a client sees one.
class TarnctlUpdateTest : public ::testing::Test
{
protected:
    TarnctlUpdateTest()
    {
        service.onRequest([this](const QJsonObject &request) {
            const QString command = request.value("cmd").toString();
            present << folders.downloadNames();
            if (command == silentAt)
                return;
            if (command == leavingAt) {
                service.dropClient();
                return;
            }
            if (request.contains("data") && take == Take::Yes) {
                taken = readFile(folders.downloaded());
                QFile::remove(folders.downloaded());
            }
            answer(command, request);
        });
    }

    void answer(const QString &command, QJsonObject request)
    {
        if (command == "requestMcuUpdate" && !version.isEmpty())
            request = withField(request, "mcuVer", version);
        if (command == interruptedAt)
            std::raise(SIGINT);
        if (command == "getAccessoryType" && !firstAccessory.isEmpty()) {
            service.answer(request, "data", std::exchange(firstAccessory, {}));
            return;
        }
        service.answer(request, "data", answers.value(command));
    }

    ToolRun update(
        const tarnClient::UpdatePlan &plan, const QStringList &options = {}, bool errorsAreTerminal = false)
    {
        return runUpdate(service, plan, file.isEmpty() ? folders.firmware() : file,
            {folders.downloads(), otherUser}, options, errorsAreTerminal);
    }

    // An update whose every answer comes late enough for the device to have been touched.
    ToolRun updateMcuLate(const QStringList &options = {})
    {
        std::vector<tarnClient::UpdateStep> steps(
            tarnClient::mcuUpdatePlan().steps.begin(), tarnClient::mcuUpdatePlan().steps.end());
        steps.back().untouchedBefore = std::chrono::milliseconds(0);
        tarnClient::UpdatePlan plan = tarnClient::mcuUpdatePlan();
        plan.steps = steps;
        return update(plan, options);
    }

    // Of the fake service.
    QMap<QString, QString> answers {{"getAccessoryType", "k_vane"}, {"getMcuVersion", "2.05"},
        {"requestMcuUpdate", "successed"}, {"requestEcUpdate", "successed"}};
    QString version = "3.14";
    QString firstAccessory {}; // what the first question gets; empty: as all others
    QString silentAt {};
    QString leavingAt {};
    QString interruptedAt {};
    Take take = Take::Yes;
    // The file that is given to tarnctl; empty: the one outside the download folder.
    QString file {};
    std::optional<tarnClient::OtherUser> otherUser {};

    FirmwareFolders folders;
    FakeService service;
    // What lay in the download folder at each request.
    QList<QStringList> present;
    QByteArray taken;
};

inline const QStringList mcuCommands {"getMcuVersion", "getAccessoryType", "requestMcuUpdate"};
inline const QStringList ecCommands {"requestEcUpdate"};
inline const QStringList placed {"fw.bin"};

} // namespace tarnClientTest
