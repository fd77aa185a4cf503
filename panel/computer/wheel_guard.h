#pragma once

#include <QWidget>

namespace tarnPanel {

// The wheel scrolls the list in which a control stands, and must not change the control in passing. It does
// once the control has the keyboard.
void guardFromWheel(QWidget *control);

} // namespace tarnPanel
