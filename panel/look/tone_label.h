#pragma once

#include "panel/look/theme.h"

#include <QLabel>

#include <optional>

namespace tarnPanel {

// A plain text in the colour of what it says, also after the window has become dark or light. Breaks between
// words.
class ToneLabel : public QLabel
{
    Q_OBJECT

public:
    // One that says nothing yet and can be selected.
    explicit ToneLabel(const QString &name, QWidget *parent = nullptr);
    explicit ToneLabel(Tone tone, const QString &text = {}, QWidget *parent = nullptr);

    // Without a tone: in the colour of ordinary text.
    void say(const QString &text, std::optional<Tone> tone = {});

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyTone();

    std::optional<Tone> shownTone;
};

} // namespace tarnPanel
