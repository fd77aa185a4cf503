#include "panel/computer/accessory_button.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace tarnPanel {

namespace {

// In percent: the style brightens what it is given, and the text has to stay readable on it.
constexpr int darkened = 130;

} // namespace

AccessoryButton::AccessoryButton(const QString &accessory, const QString &title, QWidget *parent)
    : QToolButton(parent)
    , name(accessory)
{
    setText(title);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(title);
    chooseColours();
}

void AccessoryButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        pressedAt = event->position().toPoint();
    QToolButton::mousePressEvent(event);
}

void AccessoryButton::mouseMoveEvent(QMouseEvent *event)
{
    // After Escape what is left of the movement means nothing.
    if (!pressedAt)
        return;
    const QPoint way = event->position().toPoint() - *pressedAt;
    if (image.isNull() && way.manhattanLength() >= QApplication::startDragDistance())
        beginDrag();
    if (image.isNull()) {
        QToolButton::mouseMoveEvent(event);
        return;
    }
    const QPoint global = event->globalPosition().toPoint();
    image->move(window()->mapFromGlobal(global) - image->rect().center());
    Q_EMIT dragged(global);
}

void AccessoryButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !pressedAt)
        return;
    if (image.isNull()) {
        pressedAt.reset();
        QToolButton::mouseReleaseEvent(event);
        return;
    }
    endDrag();
    Q_EMIT dropped(event->globalPosition().toPoint());
}

void AccessoryButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && !image.isNull()) {
        endDrag();
        Q_EMIT dragCancelled();
        return;
    }
    QToolButton::keyPressEvent(event);
}

void AccessoryButton::hideEvent(QHideEvent *event)
{
    if (!image.isNull()) {
        endDrag();
        Q_EMIT dragCancelled();
    }
    pressedAt.reset();
    QToolButton::hideEvent(event);
}

// In the style's own picture a button that is down differs too little from the others.
void AccessoryButton::paintEvent(QPaintEvent *)
{
    QStyleOptionToolButton option;
    initStyleOption(&option);
    if (isChecked())
        option.palette = checkedColours;
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
}

void AccessoryButton::changeEvent(QEvent *event)
{
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        chooseColours();
}

// Not in each picture: the style keeps pictures by palette, and would keep another one for each time.
void AccessoryButton::chooseColours()
{
    checkedColours = palette();
    checkedColours.setColor(QPalette::Button, palette().color(QPalette::Highlight).darker(darkened));
    checkedColours.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
}

void AccessoryButton::beginDrag()
{
    image = new QLabel(text(), window());
    image->setAttribute(Qt::WA_TransparentForMouseEvents);
    image->setFrameShape(QFrame::Panel);
    image->setAutoFillBackground(true);
    image->setMargin(fontMetrics().height() / 3);
    image->adjustSize();
    image->show();
    setFocus(Qt::MouseFocusReason);
}

void AccessoryButton::endDrag()
{
    pressedAt.reset();
    delete image;
    setDown(false);
}

} // namespace tarnPanel
