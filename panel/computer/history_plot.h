#pragma once

#include "panel/computer/history_sampler.h"

#include <QWidget>

namespace tarnPanel {

struct PlotLine;

// The power limits in force and the accesses per second over the last five minutes.
class HistoryPlot : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPlot(QWidget *parent = nullptr);

    void look(const tarnSimulator::ComputerControl &computer);
    void startAnew();
    void add(const std::optional<HistorySample> &sample);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showHistory();
    [[nodiscard]] QList<PlotLine> limitLines() const;
    [[nodiscard]] QList<PlotLine> trafficLines() const;

    HistorySampler sampler;
};

} // namespace tarnPanel
