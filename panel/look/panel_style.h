#pragma once

#include <QProxyStyle>

namespace tarnPanel {

// Fusion, with outlines that are seen in a dark window as well: its own are made of a darker window colour.
class PanelStyle : public QProxyStyle
{
    Q_OBJECT

public:
    PanelStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
        const QWidget *widget) const override;
};

} // namespace tarnPanel
