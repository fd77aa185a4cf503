#include "panel/computer/machine_drawing.h"

#include "panel/computer/computer_picture.h"
#include "panel/computer/drawn_accessory.h"
#include "panel/look/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace tarnPanel {

namespace {

// In heights of a line.
constexpr qreal margin = 0.5;
constexpr qreal gapBetween = 3.6;
constexpr qreal tallest = 9;
constexpr qreal roomForText = 8;
constexpr qreal roomForWidth = 36;
constexpr qreal greatestGrowth = 1.7;
constexpr qreal widest = 24;
constexpr qreal pulledOffAt = 4;

} // namespace

MachineDrawing::MachineDrawing(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("machineDrawing"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Drawing of the simulated computer"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void MachineDrawing::show(const MachineFacts &now)
{
    const QString description = descriptionOf(now);
    if (description != accessibleDescription()) {
        setAccessibleDescription(description);
        setToolTip(description
            + (now.isAttached ? QStringLiteral("\nA click on the connector or the Delete key unplugs.")
                              : QString()));
    }
    if (now == facts)
        return;
    if (!now.isAttached)
        stopPulling();
    facts = now;
    update();
}

bool MachineDrawing::offerDrop(QPoint globalPosition)
{
    const bool isInside = rect().contains(mapFromGlobal(globalPosition));
    if (isInside != isDropOffered)
        update();
    isDropOffered = isInside;
    return isInside;
}

void MachineDrawing::endDrop()
{
    isDropOffered = false;
    update();
}

QRect MachineDrawing::connectorArea() const
{
    const QRectF computer = computerBox();
    const QRectF connector = connectorOf(computer, em());
    return QRectF(connector.topLeft(), QPointF(accessoryBox().left(), connector.bottom())).toRect();
}

QRect MachineDrawing::accessoryArea() const
{
    return accessoryBox().toRect();
}

QSize MachineDrawing::sizeHint() const
{
    return fontMetrics().height() * QSize(30, 10);
}

QSize MachineDrawing::minimumSizeHint() const
{
    return QSizeF(fontMetrics().height() * 18, fontMetrics().height() * 7.4).toSize();
}

QFont MachineDrawing::drawnFont() const
{
    const qreal line = fontMetrics().height();
    const qreal growth = std::min(height() / (line * roomForText), width() / (line * roomForWidth));
    QFont grown = font();
    const qreal factor = std::clamp(growth, 1.0, greatestGrowth);
    if (grown.pointSizeF() > 0)
        grown.setPointSizeF(grown.pointSizeF() * factor);
    else
        grown.setPixelSize(static_cast<int>(grown.pixelSize() * factor));
    return grown;
}

QRectF MachineDrawing::computerBox() const
{
    const qreal side = em() * margin;
    const qreal room = width() - 2 * side - em() * gapBetween;
    const QSizeF size(std::min(room * 0.48, em() * widest), std::min(height() - 2 * side, em() * tallest));
    const qreal spare = width() - 2 * side - em() * gapBetween - 2 * size.width();
    return {QPointF(side + std::max(0.0, spare / 2), (height() - size.height()) / 2), size};
}

QRectF MachineDrawing::accessoryBox() const
{
    const QRectF computer = computerBox();
    const qreal left = computer.right() + em() * gapBetween;
    const qreal right = std::min(width() - em() * margin, left + em() * widest);
    return {QPointF(left, computer.top()), QPointF(right, computer.bottom())};
}

bool MachineDrawing::isPulledOff() const
{
    return pulledBy.manhattanLength() > em() * pulledOffAt;
}

void MachineDrawing::stopPulling()
{
    pressedAt.reset();
    pulledBy = {};
    update();
}

void MachineDrawing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(drawnFont());
    const QRectF computer = computerBox();
    const QRectF place = accessoryBox();
    const QPalette colours = palette();

    if (facts.isAttached) {
        const QRectF box = place.translated(pulledBy);
        if (!isPulledOff()) {
            paintCable(painter, connectorOf(computer, em()).center(),
                QPointF(box.left() + 1, box.center().y()), colours);
        }
        painter.setOpacity(isPulledOff() ? 0.5 : 1);
        paintAccessory(painter, box, facts, colours);
        painter.setOpacity(1);
    }
    if (!facts.isAttached || isDropOffered)
        paintEmptyPlace(painter, place.adjusted(1, 1, -1, -1), colours, isDropOffered);
    paintComputer(painter, computer, facts, colours);
    if (hasFocus()) {
        painter.setPen(QPen(toneColour(Tone::Accent, colours), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
}

void MachineDrawing::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !facts.isAttached)
        return;
    isConnectorPressed = connectorArea().contains(event->position().toPoint());
    if (!isConnectorPressed && accessoryArea().contains(event->position().toPoint()))
        pressedAt = event->position().toPoint();
}

void MachineDrawing::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (!pressedAt) {
        const bool unplugs = facts.isAttached && connectorArea().contains(position);
        const bool isPulled = facts.isAttached && accessoryArea().contains(position);
        setCursor(unplugs ? Qt::PointingHandCursor : isPulled ? Qt::OpenHandCursor : Qt::ArrowCursor);
        return;
    }
    const QPoint way = position - *pressedAt;
    if (way.manhattanLength() < QApplication::startDragDistance() && pulledBy.isNull())
        return;
    pulledBy = way;
    setCursor(Qt::ClosedHandCursor);
    update();
}

void MachineDrawing::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !facts.isAttached)
        return;
    const bool clickedConnector =
        std::exchange(isConnectorPressed, false) && connectorArea().contains(event->position().toPoint());
    const bool unplugs = clickedConnector || isPulledOff();
    stopPulling();
    if (unplugs)
        Q_EMIT unplugWanted();
}

void MachineDrawing::keyPressEvent(QKeyEvent *event)
{
    const bool isDelete = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if (event->key() == Qt::Key_Escape && pressedAt) {
        stopPulling();
    } else if (isDelete && facts.isAttached) {
        Q_EMIT unplugWanted();
    } else {
        QWidget::keyPressEvent(event);
    }
}

// The machine may go while its accessory is held.
void MachineDrawing::hideEvent(QHideEvent *event)
{
    stopPulling();
    isConnectorPressed = false;
    QWidget::hideEvent(event);
}

void MachineDrawing::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    update();
}

void MachineDrawing::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace tarnPanel
