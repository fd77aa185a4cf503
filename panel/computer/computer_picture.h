#pragma once

#include "panel/computer/machine_facts.h"

#include <QPalette>
#include <QRectF>

class QPainter;

namespace tarnPanel {

// The pieces of the drawing, all measured in the height of a line so that they grow with the text.

// A rounded case with a title; returns the room for its contents.
[[nodiscard]] QRectF paintCase(
    QPainter &painter, const QRectF &box, const QPalette &palette, const QString &title);
// A round light. A dark one is a ring.
void paintLamp(QPainter &painter, QPointF centre, const QColor &colour, const QPalette &palette);
// Filled up to the level, with a bolt while it is charged. Returns its width.
qreal paintBattery(QPainter &painter, QPointF topLeft, int level, bool isCharging, const QPalette &palette);
// Lines of text below each other, cut off where the room ends.
void paintLines(QPainter &painter, const QRectF &room, const QStringList &lines, qreal firstIndent);

// The computer's case with its power light, its battery and its connector at the right edge.
void paintComputer(QPainter &painter, const QRectF &box, const MachineFacts &facts, const QPalette &palette);
[[nodiscard]] QRectF connectorOf(const QRectF &computer, qreal lineHeight);

} // namespace tarnPanel
