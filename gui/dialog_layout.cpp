#include "dialog_layout.h"

#include <algorithm>

namespace tarnGui {

namespace {

constexpr int widthDip = 480;
constexpr int marginDip = 20;
constexpr int iconSizeDip = 32;
constexpr int iconGapDip = 16;
constexpr int titleGapDip = 12;
constexpr int paragraphGapDip = 9;
constexpr int panelBottomDip = 24;
constexpr int footerPaddingDip = 12;
constexpr int buttonGapDip = 8;
constexpr int buttonWidthDip = 88;
constexpr int buttonHeightDip = 28;
// Between a label and the edge of its button, for large fonts.
constexpr int labelPaddingDip = 12;
constexpr int labelPaddingVerticalDip = 5;

// From the right edge to the left, so that the footer ends in the last button.
std::vector<Area> layOutButtons(int dpi, int footerTop, const TextMeasures &measures)
{
    const int height = std::max(
        scaled(buttonHeightDip, dpi), measures.lineHeight + 2 * scaled(labelPaddingVerticalDip, dpi));
    std::vector<Area> buttons(measures.buttonLabelWidths.size());
    int right = scaled(widthDip, dpi) - scaled(marginDip, dpi);
    for (std::size_t index = buttons.size(); index-- > 0;) {
        const int width = std::max(scaled(buttonWidthDip, dpi),
            measures.buttonLabelWidths[index] + 2 * scaled(labelPaddingDip, dpi));
        buttons[index] = {right - width, footerTop + scaled(footerPaddingDip, dpi), width, height};
        right -= width + scaled(buttonGapDip, dpi);
    }
    return buttons;
}

} // namespace

int scaled(int dip, int dpi)
{
    return (dip * dpi + dipsPerInch / 2) / dipsPerInch;
}

int textWidth(int dpi)
{
    return scaled(widthDip, dpi) - 2 * scaled(marginDip, dpi) - iconSize(dpi) - scaled(iconGapDip, dpi);
}

int iconSize(int dpi)
{
    return scaled(iconSizeDip, dpi);
}

DialogLayout layOutDialog(int dpi, const TextMeasures &measures)
{
    const int margin = scaled(marginDip, dpi);
    const int icon = iconSize(dpi);
    const int textLeft = margin + icon + scaled(iconGapDip, dpi);

    DialogLayout layout {};
    layout.width = scaled(widthDip, dpi);
    layout.icon = {margin, margin, icon, icon};
    // A title of one line stands beside the middle of the icon, a longer one begins with it.
    const int titleTop = margin + std::max(0, (icon - measures.titleHeight) / 2);
    layout.title = {textLeft, titleTop, textWidth(dpi), measures.titleHeight};

    int bottom = std::max(layout.title.bottom(), layout.icon.bottom());
    int top = layout.title.bottom() + scaled(titleGapDip, dpi);
    for (const int height : measures.paragraphHeights) {
        layout.paragraphs.push_back({textLeft, top, textWidth(dpi), height});
        bottom = std::max(bottom, top + height);
        top += height + scaled(paragraphGapDip, dpi);
    }

    layout.footerTop = bottom + scaled(panelBottomDip, dpi);
    layout.buttons = layOutButtons(dpi, layout.footerTop, measures);
    const int buttonBottom = layout.buttons.empty() ? layout.footerTop : layout.buttons.back().bottom();
    layout.height = buttonBottom + scaled(footerPaddingDip, dpi);
    return layout;
}

} // namespace tarnGui
