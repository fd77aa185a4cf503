#pragma once

#include <QTimer>
#include <QWidget>

#include <memory>

class QSettings;
class QSplitter;

namespace tarnPanel {

class ConnectionHeader;
class IdentityPage;
class MessageLog;
class PageTabs;
class QuestionQueue;
class ServiceLink;
class Session;
class SettingsPage;
class UpdatePage;
class UpdateRun;
struct ClientParts;

// The right half of the window: a client of the service.
class ClientSide : public QWidget
{
    Q_OBJECT

public:
    // `settings` holds what is remembered of this half. Both references outlive the widget.
    ClientSide(const QString &pipeName, Session &session, QSettings &settings, QWidget *parent = nullptr);
    // For tests, with a client and updates of their own.
    ClientSide(ClientParts parts, Session &session, QSettings &settings, QWidget *parent = nullptr);
    ~ClientSide() override;

    // For a service on a simulated computer: connects without being asked. Does nothing after the user has
    // disconnected.
    void connectByItself();
    // The service has just been started: tries at once, if it is trying at all.
    void connectSoon();
    // A firmware update of this client.
    [[nodiscard]] bool isUpdating() const;

Q_SIGNALS:
    // `isDone`: as it was meant to.
    void updateEnded(bool isDone);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void build(QSettings &settings);
    void listen();
    void followConnection();
    void readAll();
    void refreshForUser();
    void refreshAges();

    QSettings &settings;
    std::unique_ptr<ServiceLink> link;
    std::unique_ptr<QuestionQueue> questions;
    MessageLog *log;
    UpdateRun *run;
    ConnectionHeader *header = nullptr;
    SettingsPage *settingsPage = nullptr;
    IdentityPage *identityPage = nullptr;
    UpdatePage *updatePage = nullptr;
    QSplitter *splitter = nullptr;
    PageTabs *tabs = nullptr;
    QTimer ticking;
    bool wasConnected = false;
};

} // namespace tarnPanel
