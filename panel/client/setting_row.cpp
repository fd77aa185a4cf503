#include "panel/client/setting_row.h"

#include "panel/client/confirmed_setting.h"
#include "panel/client/setting_control.h"
#include "panel/look/tone_label.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace tarnPanel {

SettingRow::SettingRow(ConfirmedSetting &confirmedSetting, QGridLayout &grid, QWidget &page)
    : QObject(&page)
    , setting(confirmedSetting)
    , control(SettingControl::make(setting.entry(), &page))
    , status(new ToneLabel(setting.entry().name + QStringLiteral("Status")))
{
    const SettingEntry &entry = setting.entry();
    auto *label = new QLabel(entry.label.toString());
    label->setBuddy(control->main());
    label->setToolTip(entry.hint.toString());
    control->main()->setObjectName(entry.name.toString());
    control->main()->setAccessibleName(entry.label.toString());
    status->setAccessibleName(control->main()->accessibleName() + QStringLiteral(": state"));
    status->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const int line = grid.rowCount();
    grid.addWidget(label, line, 0);
    grid.addWidget(control, line, 1);
    addOrders(grid, line);
    grid.addWidget(status, line + 1, 1, 1, 2);
    connect(control, &SettingControl::asked, &setting, &ConfirmedSetting::set);
    connect(&setting, &ConfirmedSetting::changed, this, &SettingRow::refresh);
    refresh();
}

void SettingRow::addOrders(QGridLayout &grid, int line)
{
    auto *buttons = new QHBoxLayout;
    grid.addLayout(buttons, line, 2);
    for (const SettingWord &order : setting.entry().orders) {
        const QString word = order.word.toString();
        auto *button = new QPushButton(order.label.toString());
        button->setObjectName(setting.entry().name + u'-' + word);
        button->setAccessibleName(
            control->main()->accessibleName() + QStringLiteral(": ") + order.label.toString().toLower());
        connect(button, &QPushButton::clicked, &setting, [this, word] { setting.set(word); });
        buttons->addWidget(button);
        orders << button;
    }
    buttons->addStretch();
}

void SettingRow::refresh()
{
    const ConfirmedSetting::Status now = setting.status();
    status->say(now.text, now.tone);
    if (status->accessibleDescription() != now.lastingText)
        status->setAccessibleDescription(now.lastingText);
    control->showWord(setting.value());
    const QString hint = setting.entry().hint.toString();
    const QString description = now.lastingText + u' ' + hint;
    QList<QWidget *> all {control->main()};
    for (QPushButton *button : orders)
        all << button;
    for (QWidget *widget : all) {
        if (widget->accessibleDescription() == description)
            continue;
        widget->setAccessibleDescription(description);
        widget->setToolTip(setting.objection().isEmpty() ? hint : setting.objection() + u'\n' + hint);
    }
    setUsable(setting.objection().isEmpty());
}

// A control that is disabled loses the keyboard to the next one; it gets it back, unless the user went
// elsewhere meanwhile.
void SettingRow::setUsable(bool isUsable)
{
    if (control->isEnabled() == isUsable)
        return;
    QWidget *const focused = QApplication::focusWidget();
    const bool ownsFocus = focused != nullptr
        && (control->isAncestorOf(focused) || orders.contains(qobject_cast<QPushButton *>(focused)));
    control->setEnabled(isUsable);
    for (QPushButton *button : orders)
        button->setEnabled(isUsable);
    // Tab does not stop at a disabled control, but at the reason.
    status->setFocusPolicy(isUsable ? Qt::NoFocus : Qt::StrongFocus);
    if (!isUsable) {
        focusOwner = ownsFocus ? focused : nullptr;
        focusHeir = QApplication::focusWidget();
    } else if (focusOwner && focusHeir == QApplication::focusWidget()) {
        focusOwner->setFocus();
    }
}

} // namespace tarnPanel
