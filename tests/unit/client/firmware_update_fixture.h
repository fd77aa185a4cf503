#pragma once

#include "client/update_setting.h"
#include "unit/client/client_fixture.h"
#include "unit/client/updating_service.h"

#include "tarn/firmware_update.h"

#include <vector>

namespace tarnClientTest {

// Updates of tarn::FirmwareUpdate against a fake service.
class FirmwareUpdateTest : public ::testing::Test
{
protected:
    using Milliseconds = std::chrono::milliseconds;

    FirmwareUpdateTest()
    {
        options.downloadFolder = folders.downloads();
        setting.findOtherUser = [] {
            return std::nullopt;
        };
        client = std::make_unique<tarn::Client>(service.pipe.pipeName(), times());
        client->open();
    }

    // The wait for a connection outlasts any pause of the machine; those who want its end shorten it.
    static tarn::ClientTimes times(Milliseconds connectionWait = Milliseconds(patienceMs))
    {
        tarn::ClientTimes shortened;
        shortened.firstRetry = Milliseconds(20);
        shortened.longestRetry = Milliseconds(100);
        shortened.connectionWait = connectionWait;
        return shortened;
    }

    // The update that the next calls work with.
    tarn::FirmwareUpdate &make(tarn::FirmwareKind kind = tarn::FirmwareKind::Mcu)
    {
        setting.plan = tarn::updatePlan(kind);
        return makePlanned();
    }

    // The same with the plan in `setting`.
    tarn::FirmwareUpdate &makePlanned()
    {
        update = std::make_unique<tarn::FirmwareUpdate>(client.get(), setting);
        QObject::connect(update.get(), &tarn::FirmwareUpdate::finished, &service.pipe,
            [this](const tarn::FirmwareResult &result) { results << result; });
        QObject::connect(update.get(), &tarn::FirmwareUpdate::phaseChanged, &service.pipe,
            [this](const QString &text, Milliseconds) { phases << text; });
        QObject::connect(update.get(), &tarn::FirmwareUpdate::requestFollows, &service.pipe,
            [this](const QString &command) { announced << command; });
        return *update;
    }

    void start() { update->start(file.isEmpty() ? folders.firmware() : file, options); }

    // The end of the update that has been started.
    tarn::FirmwareResult end()
    {
        EXPECT_TRUE(tarnTest::waitUntil([this] { return !results.isEmpty(); }, patienceMs));
        EXPECT_EQ(results.size(), 1);
        return results.isEmpty() ? tarn::FirmwareResult() : results.takeFirst();
    }

    tarn::FirmwareResult run(tarn::FirmwareKind kind = tarn::FirmwareKind::Mcu)
    {
        make(kind);
        start();
        return end();
    }

    // An MCU update whose every answer comes late enough for the device to have been touched.
    tarn::FirmwareResult runLate()
    {
        planRefusalTime(Milliseconds(0));
        makePlanned();
        start();
        return end();
    }

    void planRefusalTime(Milliseconds untouchedBefore)
    {
        const auto &planned = tarn::updatePlan(tarn::FirmwareKind::Mcu).steps;
        steps.assign(planned.begin(), planned.end());
        steps.back().untouchedBefore = untouchedBefore;
        setting.plan = tarn::updatePlan(tarn::FirmwareKind::Mcu);
        setting.plan.steps = steps;
    }

    // The client reads both at once; the file stays.
    void answerTogetherWithANotification(const QString &last)
    {
        service.pipe.onRequest([this, last](const QJsonObject &request) {
            const QString command = request.value("cmd").toString();
            QByteArray bytes = compact(withField(request, "data", service.answers.value(command)));
            if (command == last)
                bytes += compact({{"cmd", "changeAccessoryType"}, {"data", "dock"}});
            service.pipe.write(bytes);
        });
    }

    [[nodiscard]] bool isAsked(const QString &command) const
    {
        return tarnTest::waitUntil([&] { return service.pipe.commands().contains(command); }, patienceMs);
    }

    FirmwareFolders folders;
    UpdatingService service {folders};
    tarn::UpdateSetting setting {tarn::updatePlan(tarn::FirmwareKind::Mcu)};
    std::vector<tarn::UpdateStep> steps;
    tarn::FirmwareUpdateOptions options;
    // The file that is flashed; empty: the one outside the download folder.
    QString file {};
    std::unique_ptr<tarn::Client> client;
    std::unique_ptr<tarn::FirmwareUpdate> update;
    QList<tarn::FirmwareResult> results;
    QStringList phases;
    QStringList announced;
};

} // namespace tarnClientTest
