#include "panel/client/client_side.h"

#include "panel/client/client_parts.h"
#include "panel/client/command_line.h"
#include "panel/client/connection_header.h"
#include "panel/client/identity_page.h"
#include "panel/client/message_log.h"
#include "panel/client/message_view.h"
#include "panel/client/mode_box.h"
#include "panel/client/question_queue.h"
#include "panel/client/service_link.h"
#include "panel/client/settings_page.h"
#include "panel/client/update_page.h"
#include "panel/look/page_tabs.h"

#include <QBoxLayout>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>

namespace tarnPanel {

namespace {

const QString splitterKey = QStringLiteral("client/splitter");
const QString tabKey = QStringLiteral("client/tab");

ClientParts ordinaryParts(const QString &pipeName)
{
    return {pipeName, std::make_unique<tarn::Client>(pipeName),
        [](tarn::Client *client, tarn::FirmwareKind kind) {
            return std::make_unique<tarn::FirmwareUpdate>(client, kind);
        },
        {}};
}

QScrollArea *scrolled(QWidget *page)
{
    auto *area = new QScrollArea;
    // It follows the focus of what is in it, so it needs none itself.
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    return area;
}

} // namespace

ClientSide::ClientSide(const QString &pipeName, Session &session, QSettings &panelSettings, QWidget *parent)
    : ClientSide(ordinaryParts(pipeName), session, panelSettings, parent)
{ }

ClientSide::ClientSide(ClientParts parts, Session &session, QSettings &panelSettings, QWidget *parent)
    : QWidget(parent)
    , settings(panelSettings)
    , link(std::make_unique<ServiceLink>(parts.pipeName, std::move(parts.client), session))
    , questions(std::make_unique<QuestionQueue>(*link))
    , log(new MessageLog(this))
    , run(new UpdateRun(*link, std::move(parts.makeUpdate), parts.downloadFolder, this))
{
    build(settings);
    listen();
    ticking.setInterval(std::chrono::seconds(1));
    connect(&ticking, &QTimer::timeout, this, &ClientSide::refreshAges);
}

ClientSide::~ClientSide()
{
    settings.setValue(splitterKey, splitter->saveState());
    settings.setValue(tabKey, tabs->currentIndex());
    ticking.stop();
    // They use the connection, which goes with the members.
    delete header;
    delete splitter;
    delete run;
}

void ClientSide::build(QSettings &panelSettings)
{
    header = new ConnectionHeader(*link);
    settingsPage = new SettingsPage(*link, *questions);
    identityPage = new IdentityPage(*link, *questions);
    updatePage = new UpdatePage(*link, *run);
    tabs = new PageTabs;
    tabs->setObjectName(QStringLiteral("clientTabs"));
    tabs->setAccessibleName(QStringLiteral("Parts of the client"));
    tabs->addTab(scrolled(settingsPage), QStringLiteral("Se&ttings"));
    tabs->addTab(scrolled(identityPage), QStringLiteral("Identity and &batteries"));
    auto *updates = new QWidget;
    auto *updateLines = new QVBoxLayout(updates);
    updateLines->setContentsMargins({});
    updateLines->addWidget(updatePage, 1);
    updateLines->addWidget(new ModeBox(*link));
    tabs->addTab(scrolled(updates), QStringLiteral("&Updates"));
    tabs->setCurrentIndex(panelSettings.value(tabKey).toInt());

    auto *below = new QWidget;
    auto *lines = new QVBoxLayout(below);
    lines->setContentsMargins({});
    lines->addWidget(new MessageView(*log, panelSettings), 1);
    lines->addWidget(new CommandLine(*link));

    splitter = new QSplitter(Qt::Vertical);
    splitter->setObjectName(QStringLiteral("clientSplitter"));
    splitter->addWidget(tabs);
    splitter->addWidget(below);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    splitter->setChildrenCollapsible(false);
    splitter->restoreState(panelSettings.value(splitterKey).toByteArray());
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(header);
    layout->addWidget(splitter, 1);
}

void ClientSide::listen()
{
    connect(link.get(), &ServiceLink::noted, log, &MessageLog::add);
    connect(&link->client(), &tarn::Client::stateChanged, this, &ClientSide::followConnection);
    connect(link.get(), &ServiceLink::accessoryChanged, this, [this] {
        settingsPage->readOfAccessory();
        identityPage->read();
    });
    connect(header, &ConnectionHeader::refreshAsked, this, &ClientSide::refreshForUser);
    connect(
        run, &UpdateRun::finished, this, [this](tarn::FirmwareKind kind, const tarn::FirmwareResult &result) {
            // After an EC update the EC is reserved, and while the service still flashes it is, too: each
            // question would wait for its time limit.
            if (kind == tarn::FirmwareKind::Mcu && (!result.wasSent || !result.answer.isEmpty()))
                readAll();
            Q_EMIT updateEnded(result.outcome == tarn::FirmwareOutcome::Done);
        });
}

void ClientSide::followConnection()
{
    const bool isConnected = link->isConnected();
    if (isConnected && !std::exchange(wasConnected, true))
        readAll();
    wasConnected = isConnected;
}

void ClientSide::readAll()
{
    settingsPage->read();
    identityPage->read();
}

void ClientSide::refreshForUser()
{
    const QuestionQueue::ForUser forUser(*questions);
    settingsPage->readAnew();
    identityPage->readAll();
}

void ClientSide::refreshAges()
{
    header->refresh();
    settingsPage->refreshAges();
    identityPage->refreshAges();
    updatePage->refreshAges();
}

void ClientSide::connectByItself()
{
    header->connectByItself();
}

void ClientSide::connectSoon()
{
    header->connectSoon();
}

bool ClientSide::isUpdating() const
{
    return run->isRunning();
}

void ClientSide::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refreshAges();
    ticking.start();
}

void ClientSide::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    ticking.stop();
}

} // namespace tarnPanel
