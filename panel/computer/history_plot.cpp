#include "panel/computer/history_plot.h"

#include "panel/computer/plot_frame.h"
#include "panel/look/theme.h"

#include <QPainter>

namespace tarnPanel {

namespace {

const QString watts = QStringLiteral("W");
const QString perSecond = QStringLiteral("/s");

} // namespace

HistoryPlot::HistoryPlot(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("historyPlot"));
    setAccessibleName(QStringLiteral("Power limits in force and accesses per second, last five minutes"));
    setToolTip(accessibleName());
    showHistory();
}

void HistoryPlot::look(const tarnSimulator::ComputerControl &computer)
{
    if (sampler.look(computer))
        showHistory();
}

void HistoryPlot::startAnew()
{
    sampler.startAnew();
    showHistory();
}

void HistoryPlot::add(const std::optional<HistorySample> &sample)
{
    sampler.add(sample);
    showHistory();
}

QSize HistoryPlot::sizeHint() const
{
    return {fontMetrics().height() * 24, fontMetrics().height() * 8};
}

QSize HistoryPlot::minimumSizeHint() const
{
    return {fontMetrics().height() * 16, fontMetrics().height() * 5};
}

void HistoryPlot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF room = QRectF(rect()).adjusted(4, 2, -4, -2);
    const qreal upper = room.height() * 0.56;
    paintPlot(painter, QRectF(room.topLeft(), QSizeF(room.width(), upper)), palette(), sampler.samples(),
        limitLines(), watts);
    paintPlot(
        painter, room.adjusted(0, upper, 0, 0), palette(), sampler.samples(), trafficLines(), perSecond);
}

void HistoryPlot::showHistory()
{
    QStringList now;
    for (const PlotLine &line : limitLines())
        now << valueNow(line, sampler.samples(), watts);
    for (const PlotLine &line : trafficLines())
        now << valueNow(line, sampler.samples(), perSecond);
    const QString text = now.join(QStringLiteral(", "));
    if (text != accessibleDescription())
        setAccessibleDescription(text);
    update();
}

QList<PlotLine> HistoryPlot::limitLines() const
{
    const auto pen = [this](Tone tone, Qt::PenStyle style) {
        return QPen(toneColour(tone, palette()), 2, style);
    };
    return {
        {QStringLiteral("PL1"), pen(Tone::Pl1, Qt::SolidLine),
            [](const HistorySample &at) {
                return at.pl1;
            }},
        {QStringLiteral("PL2"), pen(Tone::Pl2, Qt::DashLine),
            [](const HistorySample &at) {
                return at.pl2;
            }},
        {QStringLiteral("PL4"), pen(Tone::Pl4, Qt::DotLine),
            [](const HistorySample &at) {
                return at.pl4;
            }},
    };
}

QList<PlotLine> HistoryPlot::trafficLines() const
{
    return {{QStringLiteral("Accesses"), QPen(toneColour(Tone::Traffic, palette()), 2, Qt::SolidLine),
        [](const HistorySample &at) {
            return at.accessesPerSecond;
        }}};
}

} // namespace tarnPanel
