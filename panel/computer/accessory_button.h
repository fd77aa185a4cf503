#pragma once

#include <QPointer>
#include <QToolButton>

#include <optional>

class QLabel;

namespace tarnPanel {

// An accessory to choose: a click plugs it in, and it can be dragged to the computer. The drag needs no
// event loop of its own: the button follows the mouse while it is held.
class AccessoryButton : public QToolButton
{
    Q_OBJECT

public:
    // The name of tarnsim; empty for nothing.
    AccessoryButton(const QString &accessory, const QString &title, QWidget *parent = nullptr);

    [[nodiscard]] QString accessoryName() const { return name; }

Q_SIGNALS:
    void dragged(QPoint globalPosition);
    void dropped(QPoint globalPosition);
    void dragCancelled();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    // Whether a button is down is what the machine says, not what was clicked last.
    void nextCheckState() override { }

private:
    void chooseColours();
    void beginDrag();
    void endDrag();

    QString name;
    QPalette checkedColours;
    // Until it is released or taken back. The button itself is up again once the mouse has left it.
    std::optional<QPoint> pressedAt;
    QPointer<QLabel> image; // while it is dragged
};

} // namespace tarnPanel
