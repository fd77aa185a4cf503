#include "panel/look/theme.h"

#include "panel/look/panel_style.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <array>
#include <cmath>

namespace tarnPanel {

namespace {

struct ToneColours
{
    Tone tone;
    QColor onLight;
    QColor onDark;
};

const ToneColours tones[] = {
    {Tone::Good, QColor(0x1B, 0x6E, 0x34), QColor(0x6F, 0xCF, 0x87)},
    {Tone::Waiting, QColor(0x8A, 0x55, 0x00), QColor(0xF2, 0xB8, 0x4B)},
    {Tone::Bad, QColor(0xB3, 0x1D, 0x28), QColor(0xFF, 0x8A, 0x84)},
    {Tone::Quiet, QColor(0x5A, 0x61, 0x6B), QColor(0xA6, 0xAE, 0xBA)},
    {Tone::Accent, QColor(0x1F, 0x5F, 0xAF), QColor(0x7D, 0xB4, 0xF5)},
    {Tone::Pl1, QColor(0x1F, 0x5F, 0xAF), QColor(0x7D, 0xB4, 0xF5)},
    {Tone::Pl2, QColor(0x1B, 0x6E, 0x34), QColor(0x6F, 0xCF, 0x87)},
    {Tone::Pl4, QColor(0xA3, 0x2A, 0x8E), QColor(0xEE, 0x9A, 0xDF)},
    {Tone::Traffic, QColor(0x8A, 0x55, 0x00), QColor(0xF2, 0xB8, 0x4B)},
};

struct PaletteColours
{
    QColor window;
    QColor base;
    QColor alternate;
    QColor button;
    QColor text;
    QColor disabledText;
    QColor hint; // in an empty field, where it says what the field takes
    QColor highlight;
    QColor highlightedText;
    QColor toolTip;
};

const PaletteColours lightColours {QColor(0xF3, 0xF4, 0xF6), QColor(0xFF, 0xFF, 0xFF),
    QColor(0xF7, 0xF8, 0xFA), QColor(0xE9, 0xEB, 0xEF), QColor(0x1C, 0x1F, 0x24), QColor(0x80, 0x86, 0x8F),
    QColor(0x5A, 0x61, 0x6B), QColor(0x1F, 0x5F, 0xAF), QColor(0xFF, 0xFF, 0xFF), QColor(0xFF, 0xFF, 0xFF)};
const PaletteColours darkColours {QColor(0x24, 0x27, 0x2C), QColor(0x1B, 0x1D, 0x21),
    QColor(0x21, 0x24, 0x29), QColor(0x33, 0x37, 0x3E), QColor(0xE8, 0xEA, 0xED), QColor(0x8B, 0x92, 0x9C),
    QColor(0x9C, 0xA3, 0xAD), QColor(0x2F, 0x6F, 0xBF), QColor(0xFF, 0xFF, 0xFF), QColor(0x33, 0x37, 0x3E)};

QPalette paletteOf(const PaletteColours &colours)
{
    QPalette palette;
    for (const auto role :
        {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, colours.text);
        palette.setColor(QPalette::Disabled, role, colours.disabledText);
    }
    palette.setColor(QPalette::PlaceholderText, colours.hint);
    palette.setColor(QPalette::Window, colours.window);
    palette.setColor(QPalette::Base, colours.base);
    palette.setColor(QPalette::AlternateBase, colours.alternate);
    palette.setColor(QPalette::Button, colours.button);
    palette.setColor(QPalette::ToolTipBase, colours.toolTip);
    palette.setColor(QPalette::Highlight, colours.highlight);
    palette.setColor(QPalette::HighlightedText, colours.highlightedText);
    palette.setColor(QPalette::Light, colours.button.lighter(120));
    palette.setColor(QPalette::Midlight, colours.button.lighter(108));
    palette.setColor(QPalette::Mid, colours.button.darker(125));
    palette.setColor(QPalette::Dark, colours.button.darker(160));
    palette.setColor(QPalette::Shadow, colours.button.darker(220));
    return palette;
}

// Of one channel, 0 to 1.
double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

} // namespace

void setAppearance(Appearance appearance)
{
    // The same style everywhere: a native one of a light desktop would not follow a dark palette.
    QApplication::setStyle(new PanelStyle);
    // Without a palette of its own the program has the desktop's.
    QApplication::setPalette(QPalette());
    const bool wantsDark =
        appearance == Appearance::AsSystem ? isDark(QApplication::palette()) : appearance == Appearance::Dark;
    QApplication::setPalette(paletteOf(wantsDark ? darkColours : lightColours));
}

bool isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::WindowText)) > luminance(palette.color(QPalette::Window));
}

QColor toneColour(Tone tone, const QPalette &palette)
{
    const auto row = std::ranges::find(tones, tone, &ToneColours::tone);
    return isDark(palette) ? row->onDark : row->onLight;
}

double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace tarnPanel
