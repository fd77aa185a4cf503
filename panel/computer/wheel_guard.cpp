#include "panel/computer/wheel_guard.h"

#include <QEvent>

namespace tarnPanel {

namespace {

class WheelGuard : public QObject
{
public:
    explicit WheelGuard(QWidget *guarded)
        : QObject(guarded)
        , control(guarded)
    { }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel || control->hasFocus())
            return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }

private:
    QWidget *control;
};

} // namespace

void guardFromWheel(QWidget *control)
{
    // Without this the wheel itself would give it the keyboard.
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelGuard(control));
}

} // namespace tarnPanel
