#pragma once

#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

namespace tarnPanel {

// A button for what cannot be taken back: the first click asks, the second one does it. A double click only
// asks.
class CarefulButton : public QPushButton
{
    Q_OBJECT

public:
    CarefulButton(const QString &text, const QString &warning, QWidget *parent = nullptr);

    [[nodiscard]] bool isAsking() const { return forgetting.isActive(); }
    // Back to the first click.
    void forget();

Q_SIGNALS:
    void confirmed();
    // The warning has to be shown, or need not be any more.
    void askingChanged();

protected:
    void focusOutEvent(QFocusEvent *event) override;

private:
    void handleClick();

    QString usualText;
    QTimer forgetting;
    QElapsedTimer sinceAsked;
};

} // namespace tarnPanel
