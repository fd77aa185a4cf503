#pragma once

#include <QColor>
#include <QPalette>

namespace tarnPanel {

// How the window looks. AsSystem is dark where the desktop's own palette is.
enum class Appearance { AsSystem, Light, Dark };

// For the whole program; takes effect at once.
void setAppearance(Appearance appearance);

// Whether text is lighter than what it stands on.
[[nodiscard]] bool isDark(const QPalette &palette);

// What a colour stands for. Each has a row for light and one for dark windows; on the window's background
// every one has a contrast of at least 4.5 to 1, so it may be text.
enum class Tone { Good, Waiting, Bad, Quiet, Accent, Pl1, Pl2, Pl4, Traffic };

[[nodiscard]] QColor toneColour(Tone tone, const QPalette &palette);

// As WCAG 2 defines it: 1 for equal colours, 21 for black on white.
[[nodiscard]] double contrast(const QColor &one, const QColor &other);

} // namespace tarnPanel
