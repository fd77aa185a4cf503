#include "panel/look/panel_style.h"

#include "panel/look/theme.h"

#include <QPainter>
#include <QStyleOption>

namespace tarnPanel {

namespace {

void drawOutline(QPainter &painter, const QStyleOption &option)
{
    // The focus has an outline of its own, which is bright enough.
    if (!isDark(option.palette) || option.state.testFlag(QStyle::State_HasFocus))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.palette.color(QPalette::Midlight).lighter(140));
    painter.setBrush(Qt::NoBrush);
    constexpr double radius = 2;
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

} // namespace

PanelStyle::PanelStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{ }

void PanelStyle::drawPrimitive(
    PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_IndicatorCheckBox || element == PE_FrameLineEdit || element == PE_PanelButtonCommand)
        drawOutline(*painter, *option);
}

void PanelStyle::drawComplexControl(
    ComplexControl control, const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox || control == CC_SpinBox)
        drawOutline(*painter, *option);
}

} // namespace tarnPanel
