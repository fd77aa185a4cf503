#pragma once

#include <QPalette>
#include <QPen>
#include <QRectF>
#include <QString>

#include <deque>
#include <functional>
#include <optional>

class QPainter;

namespace tarnPanel {

struct HistorySample;
using History = std::deque<std::optional<HistorySample>>;

// One line of a plot. Lines differ in how they are dashed as well as in their colour.
struct PlotLine
{
    QString name;
    QPen pen;
    std::function<double(const HistorySample &)> value;
};

// Legend above, the greatest value at the left, and the lines over the last five minutes.
void paintPlot(QPainter &painter, const QRectF &room, const QPalette &palette, const History &history,
    const QList<PlotLine> &lines, const QString &unit);

// "PL1 28 W": the line now, or that it is not known.
[[nodiscard]] QString valueNow(const PlotLine &line, const History &history, const QString &unit);

} // namespace tarnPanel
