#include "panel/computer/drawn_accessory.h"

#include "panel/computer/computer_picture.h"
#include "panel/look/theme.h"

#include <QPainter>
#include <QPainterPath>

namespace tarnPanel {

namespace {

constexpr int fullLight = 255;
constexpr int pinsOfChip = 4;

Tone toneOf(GpuState state)
{
    switch (state) {
    case GpuState::Started:
        return Tone::Good;
    case GpuState::Problem:
        return Tone::Bad;
    case GpuState::None:
    case GpuState::Stopped:
        break;
    }
    return Tone::Quiet;
}

QColor lampColour(const MachineFacts &facts, const QPalette &palette)
{
    if (facts.hasGraphics())
        return facts.graphicsLight;
    const QColor white = isDark(palette) ? QColor(0xFF, 0xF2, 0xC4) : QColor(0xF2, 0xB8, 0x2B);
    if (facts.hasDock() && facts.dockLight != QColor(Qt::black))
        return white;
    if (facts.hasKvane() && facts.kvaneLight > 0) {
        // From dim to bright; the faintest light is still one.
        QColor strength = white;
        strength.setAlpha(60 + facts.kvaneLight * (fullLight - 60) / fullLight);
        return strength;
    }
    return Qt::black;
}

// A chip, filled while it works, with a cross over it when its driver does not.
void paintGpu(QPainter &painter, QPointF topLeft, GpuState state, const QPalette &palette)
{
    const qreal em = painter.fontMetrics().height();
    const QRectF chip(topLeft + QPointF(em * 0.2, em * 0.2), QSizeF(em * 0.8, em * 0.6));
    const QColor colour = toneColour(toneOf(state), palette);
    painter.setPen(QPen(colour, em * 0.1));
    for (int pin = 0; pin < pinsOfChip; ++pin) {
        const qreal along = em * (0.1 + 0.2 * pin);
        painter.drawLine(chip.topLeft() + QPointF(along, -em * 0.18), chip.topLeft() + QPointF(along, 0));
        painter.drawLine(
            chip.bottomLeft() + QPointF(along, 0), chip.bottomLeft() + QPointF(along, em * 0.18));
    }
    painter.setBrush(state == GpuState::Started ? QBrush(colour) : QBrush(palette.color(QPalette::Base)));
    painter.drawRect(chip);
    if (state == GpuState::Problem) {
        painter.drawLine(chip.topLeft(), chip.bottomRight());
        painter.drawLine(chip.topRight(), chip.bottomLeft());
    }
}

// The light of the graphics box runs along its front.
void paintLightBar(QPainter &painter, const QRectF &box, const QColor &colour, const QPalette &palette)
{
    const qreal em = painter.fontMetrics().height();
    const QRectF bar(box.left() + em * 0.6, box.bottom() - em * 0.55, box.width() - em * 1.2, em * 0.3);
    painter.setPen(QPen(toneColour(Tone::Quiet, palette), 1));
    painter.setBrush(colour == QColor(Qt::black) ? palette.color(QPalette::Window) : colour);
    painter.drawRoundedRect(bar, em * 0.15, em * 0.15);
}

} // namespace

void paintAccessory(QPainter &painter, const QRectF &box, const MachineFacts &facts, const QPalette &palette)
{
    const qreal em = painter.fontMetrics().height();
    const QRectF room = paintCase(painter, box, palette, accessoryTitle(facts.accessoryCode));
    const bool hasLight = facts.hasDock() || facts.hasGraphics() || facts.hasKvane();
    if (hasLight) {
        paintLamp(painter, QPointF(room.right() - em * 0.5, box.top() + em * 0.9), lampColour(facts, palette),
            palette);
    }
    qreal indent = 0;
    if (facts.hasGraphics()) {
        paintGpu(painter, room.topLeft(), facts.gpu, palette);
        paintLightBar(painter, box, facts.graphicsLight, palette);
        indent = em * 1.5;
    }
    if (facts.hasKvane())
        indent = paintBattery(painter, room.topLeft(), facts.kvaneBattery, facts.isKvaneCharging, palette);
    painter.setPen(palette.color(QPalette::Text));
    paintLines(painter, room, accessoryLines(facts), indent);
}

void paintEmptyPlace(QPainter &painter, const QRectF &box, const QPalette &palette, bool isChosen)
{
    const qreal em = painter.fontMetrics().height();
    const QColor colour = isChosen ? toneColour(Tone::Accent, palette) : toneColour(Tone::Quiet, palette);
    painter.setPen(QPen(colour, isChosen ? 3 : 1.5, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box, em * 0.5, em * 0.5);
    painter.setPen(colour);
    painter.drawText(box.adjusted(em, em * 0.5, -em, -em * 0.5), Qt::AlignCenter | Qt::TextWordWrap,
        isChosen ? QStringLiteral("Drop it here")
                 : QStringLiteral("Nothing is plugged in.\nClick an accessory below or drag it here."));
}

void paintCable(QPainter &painter, QPointF from, QPointF to, const QPalette &palette)
{
    const qreal em = painter.fontMetrics().height();
    const qreal bend = (to.x() - from.x()) * 0.6;
    QPainterPath cable(from);
    cable.cubicTo(from + QPointF(bend, em * 0.8), to + QPointF(-bend, em * 0.8), to);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(toneColour(Tone::Quiet, palette), em * 0.34, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(cable);
    painter.setPen(QPen(palette.color(QPalette::Button), em * 0.16, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(cable);
}

} // namespace tarnPanel
