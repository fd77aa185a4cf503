#pragma once

#include "panel/computer/machine_facts.h"

#include <QWidget>

#include <optional>

namespace tarnPanel {

// The computer, its connector and what is plugged in. An accessory can be dropped here; the plugged one is
// pulled off, or unplugged by a click on the connector or with the Delete key.
class MachineDrawing : public QWidget
{
    Q_OBJECT

public:
    explicit MachineDrawing(QWidget *parent = nullptr);

    void show(const MachineFacts &now);
    using QWidget::show;

    // While an accessory is dragged over the window; true when it would be plugged in there.
    bool offerDrop(QPoint globalPosition);
    void endDrop();

    // Where the user clicks to unplug.
    [[nodiscard]] QRect connectorArea() const;
    [[nodiscard]] QRect accessoryArea() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    void unplugWanted();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    // The text grows with the room, so that a large drawing is not an empty one.
    [[nodiscard]] QFont drawnFont() const;
    // The height of a line, in which everything is measured.
    [[nodiscard]] qreal em() const { return QFontMetricsF(drawnFont()).height(); }
    [[nodiscard]] QRectF computerBox() const;
    [[nodiscard]] QRectF accessoryBox() const;
    [[nodiscard]] bool isPulledOff() const;
    void stopPulling();

    MachineFacts facts;
    std::optional<QPoint> pressedAt;
    QPoint pulledBy;
    bool isDropOffered = false;
    bool isConnectorPressed = false;
};

} // namespace tarnPanel
