#pragma once

#include "panel/computer/machine_facts.h"

#include <QPalette>
#include <QRectF>

class QPainter;

namespace tarnPanel {

// What is plugged in, with its lights, its battery and what it does.
void paintAccessory(QPainter &painter, const QRectF &box, const MachineFacts &facts, const QPalette &palette);
// Where an accessory would be.
void paintEmptyPlace(QPainter &painter, const QRectF &box, const QPalette &palette, bool isChosen);
// From the connector to the accessory.
void paintCable(QPainter &painter, QPointF from, QPointF to, const QPalette &palette);

} // namespace tarnPanel
