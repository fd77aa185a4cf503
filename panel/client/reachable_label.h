#pragma once

#include "panel/look/tone_label.h"

namespace tarnPanel {

// A text that Tab stops at while there is one, so that it is also read by those who do not see it. Tab does
// not stop at the disabled control that it explains.
class ReachableLabel : public ToneLabel
{
    Q_OBJECT

public:
    ReachableLabel(const QString &name, const QString &accessibleName, QWidget *parent = nullptr);

    // `lasting` is read out in its place, without what changes all the time; null: the text itself.
    void say(const QString &text, std::optional<Tone> tone = {}, const QString &lasting = {});
};

} // namespace tarnPanel
