#include "panel/look/tone_label.h"

#include <QApplication>
#include <QEvent>

namespace tarnPanel {

ToneLabel::ToneLabel(const QString &name, QWidget *parent)
    : QLabel(parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

ToneLabel::ToneLabel(Tone tone, const QString &text, QWidget *parent)
    : QLabel(text, parent)
    , shownTone(tone)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    applyTone();
}

void ToneLabel::say(const QString &newText, std::optional<Tone> tone)
{
    if (text() != newText)
        setText(newText);
    shownTone = tone;
    applyTone();
}

void ToneLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
        applyTone();
}

void ToneLabel::applyTone()
{
    const QPalette program = QApplication::palette();
    const QColor colour =
        shownTone ? toneColour(*shownTone, program) : program.color(QPalette::Active, QPalette::WindowText);
    // Setting it announces a change of the palette again.
    if (palette().color(QPalette::Active, QPalette::WindowText) == colour)
        return;
    QPalette own;
    own.setColor(QPalette::WindowText, colour);
    setPalette(own);
}

} // namespace tarnPanel
