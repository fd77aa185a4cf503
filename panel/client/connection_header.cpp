#include "panel/client/connection_header.h"

#include "panel/client/connection_text.h"
#include "panel/client/service_link.h"
#include "panel/look/tone_label.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QShortcut>

namespace tarnPanel {

namespace {

using State = tarn::Client::State;

const QString warning =
    QStringLiteral("The service talks to one client at a time: connecting takes the place of the application "
                   "that is connected to it now.");

Tone toneOf(State state)
{
    if (state == State::Connected)
        return Tone::Good;
    return state == State::Closed ? Tone::Quiet : Tone::Waiting;
}

} // namespace

ConnectionHeader::ConnectionHeader(ServiceLink &serviceLink, QWidget *parent)
    : QWidget(parent)
    , link(serviceLink)
    , state(new ToneLabel(QStringLiteral("connectionState")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    state->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    state->setFocusPolicy(Qt::StrongFocus);
    state->setAccessibleName(QStringLiteral("Connection"));
    layout->addWidget(state);
    auto *buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    opening = addButton(QStringLiteral("connect"), QStringLiteral("&Connect"), warning);
    closing = addButton(QStringLiteral("disconnect"), QStringLiteral("D&isconnect"),
        QStringLiteral("Ends the connection, and does not come back by itself."));
    reading = addButton(
        QStringLiteral("refresh"), QStringLiteral("&Refresh (F5)"), QStringLiteral("Reads all values anew."));
    // Not the button's own, which would take the place of the underlined letter.
    auto *key = new QShortcut(Qt::Key_F5, this);
    connect(key, &QShortcut::activated, reading, [this] { reading->click(); });
    buttons->addWidget(opening);
    buttons->addWidget(closing);
    buttons->addStretch();
    buttons->addWidget(reading);
    connect(opening, &QPushButton::clicked, this, &ConnectionHeader::open);
    connect(closing, &QPushButton::clicked, this, &ConnectionHeader::close);
    connect(reading, &QPushButton::clicked, this, &ConnectionHeader::refreshAsked);
    connect(&link, &ServiceLink::changed, this, &ConnectionHeader::refresh);
    age.begin();
    refresh();
}

QPushButton *ConnectionHeader::addButton(const QString &name, const QString &text, const QString &hint)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setToolTip(hint);
    button->setAccessibleDescription(hint);
    return button;
}

void ConnectionHeader::connectByItself()
{
    if (!hasOpened)
        open();
}

void ConnectionHeader::connectSoon()
{
    if (link.client().state() == State::Waiting)
        link.client().open();
}

void ConnectionHeader::open()
{
    hasOpened = true;
    link.client().open();
    refresh();
}

void ConnectionHeader::close()
{
    hasOpened = true;
    link.client().close();
    refresh();
}

void ConnectionHeader::refresh()
{
    const State now = link.client().state();
    const bool mustWarn = !hasOpened && now == State::Closed;
    const QString text = connectionText(link.client()) + (mustWarn ? u' ' + warning : QString());
    if (text != shown)
        age.begin();
    shown = text;
    state->say(QStringLiteral("%1 (changed %2)").arg(text, age.text()), toneOf(now));
    if (state->accessibleDescription() != text)
        state->setAccessibleDescription(text);
    const bool isOpen = now != State::Closed;
    opening->setText(isOpen ? QStringLiteral("&Connect again") : QStringLiteral("&Connect"));
    opening->setEnabled(now != State::Connected);
    closing->setEnabled(isOpen);
    reading->setEnabled(now == State::Connected && link.updateText().isEmpty());
}

} // namespace tarnPanel
