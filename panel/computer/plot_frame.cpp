#include "panel/computer/plot_frame.h"

#include "panel/computer/history_sampler.h"
#include "panel/look/theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tarnPanel {

namespace {

// Of the scale: the next of 10, 20, 50, 100 ... above all values.
double roundedTop(double greatest)
{
    constexpr double least = 10;
    double decade = least;
    while (decade * 10 <= greatest)
        decade *= 10;
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (decade * factor >= greatest)
            return decade * factor;
    }
    return decade * 10;
}

double greatestOf(const History &history, const QList<PlotLine> &lines)
{
    double greatest = 0;
    for (const auto &sample : history) {
        for (const PlotLine &line : lines)
            greatest = sample ? std::max(greatest, line.value(*sample)) : greatest;
    }
    return greatest;
}

void paintLegend(QPainter &painter, const QRectF &room, const QPalette &palette, const History &history,
    const QList<PlotLine> &lines, const QString &unit)
{
    const qreal em = painter.fontMetrics().height();
    qreal x = room.left();
    for (const PlotLine &line : lines) {
        painter.setPen(line.pen);
        painter.drawLine(QPointF(x, room.top() + em / 2), QPointF(x + em * 1.6, room.top() + em / 2));
        painter.setPen(palette.color(QPalette::WindowText));
        const QString text = valueNow(line, history, unit);
        const qreal width = painter.fontMetrics().horizontalAdvance(text);
        painter.drawText(
            QRectF(x + em * 1.9, room.top(), width + 2, em), Qt::AlignVCenter | Qt::TextDontClip, text);
        x += em * 2.7 + width;
    }
    const QString period = QStringLiteral("last 5 minutes");
    painter.setPen(toneColour(Tone::Quiet, palette));
    if (x + painter.fontMetrics().horizontalAdvance(period) < room.right())
        painter.drawText(room, Qt::AlignRight | Qt::AlignTop, period);
}

void paintLine(
    QPainter &painter, const QRectF &area, const History &history, const PlotLine &line, double top)
{
    painter.setPen(line.pen);
    const qreal step = area.width() / static_cast<qreal>(HistorySampler::seconds - 1);
    qreal x = area.right() - step * static_cast<qreal>(history.size() - 1);
    QPolygonF piece;
    for (const auto &sample : history) {
        if (sample) {
            const double share = std::clamp(line.value(*sample) / top, 0.0, 1.0);
            piece << QPointF(x, area.bottom() - share * area.height());
        } else {
            painter.drawPolyline(piece);
            piece.clear();
        }
        x += step;
    }
    painter.drawPolyline(piece);
}

} // namespace

void paintPlot(QPainter &painter, const QRectF &room, const QPalette &palette, const History &history,
    const QList<PlotLine> &lines, const QString &unit)
{
    const qreal em = painter.fontMetrics().height();
    const double top = roundedTop(greatestOf(history, lines));
    // As wide as usual, so that both plots begin at the same place.
    const QString topText = QString::number(top);
    const auto widthOf = [&painter](const QString &text) {
        return painter.fontMetrics().horizontalAdvance(text);
    };
    const qreal scaleWidth = std::max(widthOf(QStringLiteral("0000")), widthOf(topText)) + 4;
    paintLegend(painter, room.adjusted(scaleWidth, 0, 0, 0), palette, history, lines, unit);

    const QRectF area = room.adjusted(scaleWidth, em * 1.15, -2, -2);
    // Thin beside the lines, and visible on dark and light.
    QColor frame = toneColour(Tone::Quiet, palette);
    frame.setAlpha(120);
    painter.setPen(QPen(frame, 1));
    painter.setBrush(palette.color(QPalette::Base));
    painter.drawRect(area);
    painter.drawLine(QPointF(area.left(), area.center().y()), QPointF(area.right(), area.center().y()));
    painter.setPen(toneColour(Tone::Quiet, palette));
    const QSizeF number(scaleWidth - 4, em);
    painter.drawText(QRectF(QPointF(room.left(), area.top() - em * 0.3), number),
        Qt::AlignRight | Qt::AlignVCenter, topText);
    // Without room for both, the upper one says more.
    if (area.height() > em * 1.6) {
        painter.drawText(QRectF(QPointF(room.left(), area.bottom() - em * 0.7), number),
            Qt::AlignRight | Qt::AlignVCenter, QStringLiteral("0"));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setClipRect(area);
    for (const PlotLine &line : lines)
        paintLine(painter, area.adjusted(0, 2, 0, -2), history, line, top);
    painter.setClipping(false);
}

QString valueNow(const PlotLine &line, const History &history, const QString &unit)
{
    if (history.empty() || !history.back())
        return QStringLiteral("%1 unknown").arg(line.name);
    return QStringLiteral("%1 %2 %3").arg(line.name).arg(std::round(line.value(*history.back()))).arg(unit);
}

} // namespace tarnPanel
