#pragma once

#include "panel/look/age_text.h"

#include <QElapsedTimer>

namespace tarnPanel {

// How long ago something was. It goes on when the computer's clock is set.
class Age
{
public:
    void begin() { clock.start(); }
    [[nodiscard]] QString text() const
    {
        return clock.isValid() ? ageText(std::chrono::milliseconds(clock.elapsed())) : QString();
    }

private:
    QElapsedTimer clock;
};

} // namespace tarnPanel
