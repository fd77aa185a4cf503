#include "panel/client/mode_box.h"

#include "client/command_catalogue.h"
#include "panel/client/careful_button.h"
#include "panel/client/needs.h"
#include "panel/client/reachable_label.h"
#include "panel/client/service_link.h"

#include <QBoxLayout>
#include <QPushButton>

namespace tarnPanel {

struct ModeBox::Entry
{
    QLatin1StringView command;
    QLatin1StringView label;
    Needs needs;
    // The EC is reserved afterwards.
    bool isCareful;
};

namespace {

// A KVane that is in its boot loader may be seen as nothing, and leaving without having entered does no
// harm: so leaving needs none.
constexpr ModeBox::Entry entries[] = {
    {QLatin1StringView("requestEnterMcuUpdateMode"), QLatin1StringView("Enter MCU update mode"), Needs::KVane,
        true},
    {QLatin1StringView("requestLeaveMcuUpdateMode"), QLatin1StringView("Leave MCU update mode"),
        Needs::Connection, false},
    {QLatin1StringView("requestStartEcUpdate"), QLatin1StringView("Reserve the EC for an update"),
        Needs::Connection, true},
};

QString warningOf(const QString &command)
{
    const tarn::CommandEntry *entry = tarn::findCommand(command);
    if (entry == nullptr)
        return {};
    QString text = QStringLiteral("%1. %2").arg(entry->summary, entry->note).trimmed();
    // The catalogue speaks of commands, and here are their buttons.
    for (const ModeBox::Entry &other : entries)
        text.replace(other.command, QStringLiteral("\"%1\"").arg(other.label));
    return text;
}

} // namespace

ModeBox::ModeBox(ServiceLink &serviceLink, QWidget *parent)
    : QGroupBox(QStringLiteral("Single steps"), parent)
    , link(serviceLink)
    , status(new ReachableLabel(QStringLiteral("modeStatus"), QStringLiteral("Single steps: state")))
{
    auto *layout = new QVBoxLayout(this);
    for (const Entry &entry : entries)
        add(entry);
    layout->addWidget(status);
    connect(&link, &ServiceLink::changed, this, &ModeBox::refresh);
    refresh();
}

void ModeBox::add(const Entry &entry)
{
    const QString warning = warningOf(entry.command.toString());
    QPushButton *button = nullptr;
    if (entry.isCareful) {
        auto *careful = new CarefulButton(entry.label.toString(), warning);
        connect(careful, &CarefulButton::confirmed, this, [this, entry] { send(entry); });
        connect(careful, &CarefulButton::askingChanged, this, &ModeBox::refresh);
        button = careful;
    } else {
        button = new QPushButton(entry.label.toString());
        button->setAccessibleDescription(warning);
        connect(button, &QPushButton::clicked, this, [this, entry] { send(entry); });
    }
    button->setObjectName(entry.command.toString());
    button->setProperty("needs", static_cast<int>(entry.needs));
    // Its text is another one while it asks.
    button->setProperty("label", entry.label.toString());
    buttons << button;
    layout()->addWidget(button);
}

void ModeBox::send(const Entry &entry)
{
    const QString label = entry.label.toString();
    waitingFor = label;
    lastResult.clear();
    refresh();
    link.order(entry.command.toString(), {}, this, [this, label](const tarn::Reply &reply) {
        waitingFor.clear();
        lastResult = reply.isAnswered()
            ? QStringLiteral("%1: the service answered \"%2\".").arg(label, reply.value())
            : QStringLiteral("%1: not confirmed. %2").arg(label, reply.reason());
        refresh();
    });
}

QString ModeBox::objectionOf(const QAbstractButton &button) const
{
    if (!waitingFor.isEmpty())
        return QStringLiteral("Waiting for the answer to: %1.").arg(waitingFor);
    return objectionTo(static_cast<Needs>(button.property("needs").toInt()), link);
}

// One that is the same for all is said once.
QString ModeBox::objections() const
{
    QStringList all;
    QStringList lines;
    for (const QAbstractButton *button : buttons) {
        const QString one = objectionOf(*button);
        all << one;
        if (!one.isEmpty())
            lines << button->property("label").toString() + QStringLiteral(": ") + one;
    }
    const bool isSame = all.count(all.constFirst()) == all.size();
    return isSame ? all.constFirst() : lines.join(u'\n');
}

void ModeBox::refresh()
{
    QString asked;
    for (QAbstractButton *button : std::as_const(buttons)) {
        const QString warning = warningOf(button->objectName());
        const QString objection = objectionOf(*button);
        button->setEnabled(objection.isEmpty());
        button->setToolTip((objection + u'\n' + warning).trimmed());
        button->setAccessibleDescription((objection + u' ' + warning).trimmed());
        const auto *careful = qobject_cast<CarefulButton *>(button);
        if (careful != nullptr && careful->isAsking())
            asked = warning;
    }
    if (!asked.isEmpty())
        status->say(asked, Tone::Bad);
    else if (!waitingFor.isEmpty())
        status->say(objections(), Tone::Waiting);
    else
        status->say((lastResult + u'\n' + objections()).trimmed(), Tone::Quiet);
}

} // namespace tarnPanel
