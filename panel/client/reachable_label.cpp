#include "panel/client/reachable_label.h"

namespace tarnPanel {

ReachableLabel::ReachableLabel(const QString &name, const QString &accessibleName, QWidget *parent)
    : ToneLabel(name, parent)
{
    setAccessibleName(accessibleName);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFocusPolicy(Qt::NoFocus);
}

void ReachableLabel::say(const QString &newText, std::optional<Tone> tone, const QString &lasting)
{
    ToneLabel::say(newText, tone);
    const QString description = lasting.isNull() ? newText : lasting;
    if (accessibleDescription() != description)
        setAccessibleDescription(description);
    setFocusPolicy(newText.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
}

} // namespace tarnPanel
