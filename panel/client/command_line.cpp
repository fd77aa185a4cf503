#include "panel/client/command_line.h"

#include "panel/client/command_text.h"
#include "panel/client/service_link.h"
#include "panel/look/tone_label.h"

#include <QBoxLayout>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace tarnPanel {

namespace {

constexpr qsizetype longestHistory = 200;

} // namespace

CommandLine::CommandLine(ServiceLink &serviceLink, QWidget *parent)
    : QWidget(parent)
    , link(serviceLink)
    , edit(new QLineEdit)
    , sending(new QPushButton(QStringLiteral("Send")))
    , forcing(new QPushButton(QStringLiteral("Send anyway")))
    , summary(new ToneLabel(QStringLiteral("commandSummary")))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    auto *line = new QHBoxLayout;
    layout->addLayout(line);
    layout->addWidget(summary);
    auto *label = new QLabel(QStringLiteral("Comman&d"));
    label->setBuddy(edit);
    for (QWidget *widget : std::initializer_list<QWidget *> {label, edit, sending, forcing})
        line->addWidget(widget);
    edit->setObjectName(QStringLiteral("command"));
    edit->setAccessibleName(QStringLiteral("Command for the service"));
    edit->setPlaceholderText(QStringLiteral("any command, such as getMcuVersion"));
    edit->installEventFilter(this);
    auto *completer = new QCompleter(&completions, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    edit->setCompleter(completer);
    sending->setObjectName(QStringLiteral("send"));
    forcing->setObjectName(QStringLiteral("sendAnyway"));
    forcing->setAccessibleDescription(
        QStringLiteral("Sends the command although something speaks against it"));
    forcing->hide();
    connect(edit, &QLineEdit::textEdited, this, &CommandLine::offer);
    connect(edit, &QLineEdit::textChanged, this, &CommandLine::handleEdit);
    // The list of completions inserts the chosen one only after this signal, also into a line that was sent.
    connect(edit, &QLineEdit::returnPressed, this, &CommandLine::sendChecked, Qt::QueuedConnection);
    connect(sending, &QPushButton::clicked, this, &CommandLine::sendChecked);
    connect(forcing, &QPushButton::clicked, this, &CommandLine::send);
    connect(&link, &ServiceLink::changed, this, &CommandLine::showSummary);
    offer({});
    showSummary();
}

void CommandLine::offer(const QString &line)
{
    const QStringList lines = completionsOf(line);
    if (lines != completions.stringList())
        completions.setStringList(lines);
}

bool CommandLine::canSend() const
{
    return link.isConnected() && link.updateText().isEmpty();
}

void CommandLine::handleEdit()
{
    objection.clear();
    showSummary();
}

void CommandLine::showSummary()
{
    const bool isObjecting = canSend() && !objection.isEmpty();
    forcing->setVisible(isObjecting);
    const QString text = summaryOf(typedText(edit->text()).name);
    const QString hindrance = link.isConnected() ? link.updateText() : QStringLiteral("Not connected.");
    const QString shown = isObjecting ? objection : (hindrance + u' ' + text).trimmed();
    summary->say(shown, isObjecting ? Tone::Bad : Tone::Quiet);
    summary->setVisible(!shown.isEmpty());
    edit->setAccessibleDescription(shown);
    sending->setEnabled(hindrance.isEmpty() && !edit->text().trimmed().isEmpty());
    sending->setAccessibleDescription(
        shown.isEmpty() ? QStringLiteral("Sends the command to the service") : shown);
}

void CommandLine::sendChecked()
{
    const TypedText typed = typedText(edit->text());
    if (typed.name.isEmpty() || !canSend())
        return;
    objection = objectionTo(typed);
    if (objection.isEmpty())
        return send();
    showSummary();
}

void CommandLine::send()
{
    const TypedText typed = typedText(edit->text());
    if (!canSend())
        return;
    const bool isForced = !objectionTo(typed).isEmpty();
    QStringList words {typed.name};
    if (!typed.data.isNull())
        words << typed.data;
    link.addToSession(isForced ? QStringList {QStringLiteral("--force")} : QStringList {}, words);
    link.ask(typed.name, typed.data, this, [](const tarn::Reply &) {});
    const QString line = edit->text().trimmed();
    if (history.isEmpty() || history.last() != line)
        history << line;
    history.remove(0, std::max<qsizetype>(0, history.size() - longestHistory));
    place = history.size();
    edit->clear();
    edit->setFocus();
}

void CommandLine::recall(int step)
{
    place = std::clamp<qsizetype>(place + step, 0, history.size());
    edit->setText(history.value(place));
}

bool CommandLine::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != edit || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Up && key != Qt::Key_Down)
        return QWidget::eventFilter(watched, event);
    recall(key == Qt::Key_Up ? -1 : 1);
    return true;
}

} // namespace tarnPanel
