#pragma once

#include <vector>

namespace tarnGui {

// Everything here is in pixels of the screen the window is on, unless it says Dip: 1/96 inch, scaled with the
// DPI.
inline constexpr int dipsPerInch = 96;

[[nodiscard]] int scaled(int dip, int dpi);

struct Area
{
    int left;
    int top;
    int width;
    int height;

    [[nodiscard]] int right() const { return left + width; }
    [[nodiscard]] int bottom() const { return top + height; }
};

// What the fonts of the screen make of a popup's texts, wrapped to textWidth().
struct TextMeasures
{
    int titleHeight;
    std::vector<int> paragraphHeights;
    std::vector<int> buttonLabelWidths;
    int lineHeight;
};

// A white panel with icon, title and paragraphs above a grey footer with the buttons at its right.
struct DialogLayout
{
    int width;
    int height;
    Area icon;
    Area title;
    std::vector<Area> paragraphs;
    int footerTop;
    std::vector<Area> buttons;
};

[[nodiscard]] int textWidth(int dpi);
[[nodiscard]] int iconSize(int dpi);
[[nodiscard]] DialogLayout layOutDialog(int dpi, const TextMeasures &measures);

} // namespace tarnGui
