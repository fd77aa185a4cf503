#include "panel/client/careful_button.h"

#include <QApplication>

namespace tarnPanel {

namespace {

// Who has read the warning by then and still wants it clicks twice again.
constexpr std::chrono::seconds memory {15};

} // namespace

CarefulButton::CarefulButton(const QString &text, const QString &warning, QWidget *parent)
    : QPushButton(text, parent)
    , usualText(text)
{
    setToolTip(warning);
    setAccessibleDescription(warning);
    forgetting.setSingleShot(true);
    forgetting.setInterval(memory);
    connect(&forgetting, &QTimer::timeout, this, &CarefulButton::forget);
    connect(this, &QPushButton::clicked, this, &CarefulButton::handleClick);
}

void CarefulButton::forget()
{
    forgetting.stop();
    setText(usualText);
    Q_EMIT askingChanged();
}

void CarefulButton::handleClick()
{
    if (isAsking()) {
        if (sinceAsked.elapsed() < QApplication::doubleClickInterval())
            return;
        forget();
        Q_EMIT confirmed();
        return;
    }
    forgetting.start();
    sinceAsked.start();
    setText(QStringLiteral("Click again: ") + usualText);
    Q_EMIT askingChanged();
}

void CarefulButton::focusOutEvent(QFocusEvent *event)
{
    QPushButton::focusOutEvent(event);
    if (isAsking())
        forget();
}

} // namespace tarnPanel
