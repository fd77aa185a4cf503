#pragma once

#include "client/client_times.h"
#include "client/update_setting.h"
#include "panel/client/client_parts.h"
#include "panel/client/client_side.h"
#include "panel/session/session.h"
#include "unit/panel/client/scripted_service.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include "support/printing.h"

#include <gtest/gtest.h>

#include <atomic>

namespace panelTest {

inline constexpr int patienceMs = 15000;

// This half of the window with a service that is played.
class ClientSideTest : public ::testing::Test
{
protected:
    explicit ClientSideTest(std::chrono::milliseconds questionLimit = std::chrono::seconds(10))
        : settings(folder.filePath(QStringLiteral("panel.ini")), QSettings::IniFormat)
    {
        times.firstRetry = std::chrono::milliseconds(20);
        times.longestRetry = std::chrono::milliseconds(50);
        times.leavePause = std::chrono::milliseconds(20);
        times.connectionWait = std::chrono::milliseconds(300);
        times.questionLimit = questionLimit;
        times.unansweredPause = std::chrono::milliseconds(50);
    }

    void make()
    {
        const auto maker = [count = looks](tarn::Client *updated, tarn::FirmwareKind kind) {
            if (QThread::currentThread() != QCoreApplication::instance()->thread())
                ++*count;
            tarn::UpdateSetting setting {tarn::updatePlan(kind)};
            setting.findOtherUser = [] {
                return std::nullopt;
            };
            return std::make_unique<tarn::FirmwareUpdate>(updated, setting);
        };
        tarnPanel::ClientParts parts {
            service.pipe, std::make_unique<tarn::Client>(service.pipe, times), maker, downloads.path()};
        client = parts.client.get();
        side.reset();
        side = std::make_unique<tarnPanel::ClientSide>(std::move(parts), session, settings);
        side->resize(440, 520);
        side->show();
    }

    // Until all that the panel reads has been read.
    void makeAndConnect(const QString &accessory = QStringLiteral("dock"))
    {
        service.values[QStringLiteral("getAccessoryType")] = accessory;
        make();
        click("connect");
        ASSERT_TRUE(shows("connectionState", QStringLiteral("Connected")));
        ASSERT_TRUE(shows("powerModeStatus", QStringLiteral("balance, read")));
        ASSERT_TRUE(shows("smartChargingStatus", QStringLiteral("on, read")));
        if (accessory != QStringLiteral("disconnected")) {
            ASSERT_TRUE(shows("mcuVersion", QStringLiteral("1.23")));
        }
    }

    template <typename W> [[nodiscard]] W &find(const char *name) const
    {
        auto *found = side->findChild<W *>(QString::fromLatin1(name));
        if (found == nullptr)
            qFatal("There is no %s.", name);
        return *found;
    }

    void click(const char *name) const { QTest::mouseClick(&find<QAbstractButton>(name), Qt::LeftButton); }

    // A button that asks once more: two clicks that are no double click.
    void clickTwice(const char *name) const
    {
        click(name);
        QTest::qWait(QApplication::doubleClickInterval() + 50);
        click(name);
    }

    // The other accessory is attached now, and all that belonged to the last one is forgotten.
    void attach(const QString &accessory, const QString &shownAs)
    {
        service.values[QStringLiteral("getAccessoryType")] = accessory;
        service.notify(QStringLiteral("changeAccessoryType"), accessory);
        ASSERT_TRUE(shows("accessory", shownAs));
    }

    // Until all that the service has written so far has arrived and has been used.
    void useAllAnswers()
    {
        service.notify(QStringLiteral("getTarnBatteryNum"), QStringLiteral("77"));
        ASSERT_TRUE(shows("battery", QStringLiteral("77 %")));
        QCoreApplication::processEvents();
    }

    // As a user who chooses from the list.
    void choose(const char *name, const QString &word) const
    {
        auto &box = find<QComboBox>(name);
        const int index = box.findData(word);
        box.setCurrentIndex(index);
        Q_EMIT box.activated(index);
    }

    template <typename C> [[nodiscard]] static bool becomes(const C &condition)
    {
        return QTest::qWaitFor(condition, patienceMs);
    }

    [[nodiscard]] QString text(const char *name) const { return find<QLabel>(name).text(); }

    [[nodiscard]] bool shows(const char *name, const QString &part) const
    {
        const bool isShown = becomes([this, name, &part] { return text(name).contains(part); });
        EXPECT_TRUE(isShown) << name << " shows: " << text(name).toStdString();
        return isShown;
    }

    [[nodiscard]] bool gets(const QString &request) const
    {
        return becomes([this, &request] { return service.requests.contains(request); });
    }

    [[nodiscard]] QStringList commands() const
    {
        QStringList lines;
        for (int row = 0; row < session.rowCount(); ++row)
            lines << session.index(row, tarnPanel::Session::Text).data().toString();
        return lines;
    }

    // As the session shows what the user did.
    [[nodiscard]] QString command(const QString &words) const
    {
        return QStringLiteral("./tarnctl --pipe %1 %2").arg(service.pipe, words);
    }

    // All texts of the message table.
    [[nodiscard]] QStringList messages() const
    {
        const QAbstractItemModel *model = find<QTableView>("messages").model();
        QStringList lines;
        for (int row = 0; row < model->rowCount(); ++row) {
            lines << model->index(row, 1).data().toString() + QStringLiteral(": ")
                    + model->index(row, 2).data().toString();
        }
        return lines;
    }

    [[nodiscard]] bool logs(const QString &kind, const QString &part) const
    {
        const bool isThere = becomes([&] {
            for (const QString &line : messages()) {
                if (line.startsWith(kind + u':') && line.contains(part))
                    return true;
            }
            return false;
        });
        EXPECT_TRUE(isThere) << messages().join(u'\n').toStdString();
        return isThere;
    }

    QTemporaryDir folder;
    QTemporaryDir downloads;
    QSettings settings;
    tarnPanel::Session session;
    tarn::ClientTimes times;
    ScriptedService service;
    // How often files were looked at, on whatever thread; it may outlive the test.
    std::shared_ptr<std::atomic<int>> looks = std::make_shared<std::atomic<int>>(0);
    tarn::Client *client = nullptr;
    std::unique_ptr<tarnPanel::ClientSide> side;
};

} // namespace panelTest
