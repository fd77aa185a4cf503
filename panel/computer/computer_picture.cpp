#include "panel/computer/computer_picture.h"

#include "panel/look/theme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tarnPanel {

namespace {

constexpr int fullBattery = 100;
constexpr int lowBattery = 20;
constexpr int ventSlots = 5;
// The height that a box needs so that they do not lie behind its text, in heights of a line.
constexpr qreal roomForVents = 6;

qreal lineHeight(const QPainter &painter)
{
    return painter.fontMetrics().height();
}

QPen outline(const QPalette &palette)
{
    return {toneColour(Tone::Quiet, palette), 1.2};
}

void paintBolt(QPainter &painter, const QRectF &room, const QPalette &palette)
{
    const auto at = [&room](qreal x, qreal y) {
        return QPointF(room.left() + x * room.width(), room.top() + y * room.height());
    };
    const QPolygonF bolt {
        {at(0.58, 0), at(0.3, 0.56), at(0.48, 0.56), at(0.42, 1), at(0.72, 0.42), at(0.53, 0.42)}};
    painter.setPen(QPen(palette.color(QPalette::Base), 1));
    painter.setBrush(palette.color(QPalette::Text));
    painter.drawPolygon(bolt);
}

void paintVents(QPainter &painter, const QRectF &box, const QPalette &palette)
{
    const qreal em = lineHeight(painter);
    QColor faint = toneColour(Tone::Quiet, palette);
    faint.setAlpha(110);
    painter.setPen(QPen(faint, em * 0.14, Qt::SolidLine, Qt::RoundCap));
    for (int slot = 0; slot < ventSlots; ++slot) {
        const qreal x = box.right() - em * (1.6 + slot * 0.45);
        painter.drawLine(QPointF(x, box.bottom() - em * 1.2), QPointF(x, box.bottom() - em * 0.5));
    }
}

} // namespace

QRectF paintCase(QPainter &painter, const QRectF &box, const QPalette &palette, const QString &title)
{
    const qreal em = lineHeight(painter);
    painter.setPen(outline(palette));
    painter.setBrush(palette.color(QPalette::Base));
    painter.drawRoundedRect(box, em * 0.5, em * 0.5);

    const QRectF room = box.adjusted(em * 0.6, em * 0.4, -em * 0.6, -em * 0.4);
    painter.save();
    QFont bold = painter.font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(palette.color(QPalette::Text));
    // The lamp of the case stands at the right.
    const qreal width = room.width() - em * 1.2;
    painter.drawText(QRectF(room.topLeft(), QSizeF(width, em)), Qt::AlignVCenter,
        painter.fontMetrics().elidedText(title, Qt::ElideRight, static_cast<int>(width)));
    painter.restore();
    return room.adjusted(0, em * 1.25, 0, 0);
}

void paintLamp(QPainter &painter, QPointF centre, const QColor &colour, const QPalette &palette)
{
    const qreal radius = lineHeight(painter) * 0.36;
    const bool isOn = colour.lightness() > 0 && colour.alpha() > 0;
    if (isOn) {
        QColor glow = colour;
        glow.setAlpha(70);
        painter.setPen(Qt::NoPen);
        painter.setBrush(glow);
        painter.drawEllipse(centre, radius * 1.5, radius * 1.5);
    }
    painter.setPen(outline(palette));
    painter.setBrush(isOn ? QBrush(colour) : QBrush(palette.color(QPalette::Window)));
    painter.drawEllipse(centre, radius, radius);
}

qreal paintBattery(QPainter &painter, QPointF topLeft, int level, bool isCharging, const QPalette &palette)
{
    const qreal em = lineHeight(painter);
    const QRectF shell(topLeft, QSizeF(em * 2.1, em * 0.95));
    const qreal gap = em * 0.13;
    painter.setPen(outline(palette));
    painter.setBrush(palette.color(QPalette::Window));
    painter.drawRoundedRect(shell, em * 0.15, em * 0.15);
    painter.drawRect(QRectF(shell.right(), shell.top() + em * 0.28, em * 0.16, em * 0.38));

    QRectF filling = shell.adjusted(gap, gap, -gap, -gap);
    filling.setWidth(filling.width() * std::clamp(level, 0, fullBattery) / fullBattery);
    painter.setPen(Qt::NoPen);
    painter.setBrush(toneColour(level < lowBattery ? Tone::Bad : Tone::Good, palette));
    painter.drawRect(filling);
    if (isCharging)
        paintBolt(painter, shell, palette);
    return em * 2.5;
}

void paintLines(QPainter &painter, const QRectF &room, const QStringList &lines, qreal firstIndent)
{
    const qreal em = lineHeight(painter);
    QRectF line(room.left() + firstIndent, room.top(), room.width() - firstIndent, em);
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const bool isLastWithRoom = line.bottom() + em > room.bottom() + 1;
        const bool isCut = isLastWithRoom && index + 1 < lines.size();
        const QString text = lines.at(index) + (isCut ? QStringLiteral(" …") : QString());
        painter.drawText(line, Qt::AlignVCenter,
            painter.fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(line.width())));
        if (isLastWithRoom)
            return;
        line.setLeft(room.left());
        line.translate(0, em);
    }
}

void paintComputer(QPainter &painter, const QRectF &box, const MachineFacts &facts, const QPalette &palette)
{
    const qreal em = lineHeight(painter);
    const QRectF room = paintCase(painter, box, palette, QStringLiteral("Computer"));
    // A simulated computer is never switched off.
    paintLamp(painter, QPointF(room.right() - em * 0.5, box.top() + em * 0.9),
        toneColour(Tone::Good, palette), palette);
    if (box.height() > em * roomForVents)
        paintVents(painter, box, palette);
    const qreal indent = paintBattery(painter, room.topLeft(), facts.battery, facts.isCharging, palette);
    painter.setPen(palette.color(QPalette::Text));
    paintLines(painter, room, computerLines(facts), indent);

    painter.setPen(outline(palette));
    painter.setBrush(palette.color(QPalette::Button));
    painter.drawRoundedRect(connectorOf(box, em), em * 0.12, em * 0.12);
}

QRectF connectorOf(const QRectF &computer, qreal lineHeight)
{
    const QSizeF size(lineHeight * 0.7, lineHeight * 1.6);
    return {QPointF(computer.right() - size.width() * 0.4, computer.center().y() - size.height() / 2), size};
}

} // namespace tarnPanel
