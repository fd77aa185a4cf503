#include "panel/look/age_text.h"

namespace tarnPanel {

using namespace std::chrono_literals;

QString ageText(std::chrono::milliseconds age)
{
    const auto ago = [age](std::chrono::milliseconds unit, const QString &name) {
        return QStringLiteral("%1 %2 ago").arg(age / unit).arg(name);
    };
    if (age < 1s)
        return QStringLiteral("just now");
    if (age < 1min)
        return ago(1s, QStringLiteral("s"));
    if (age < 1h)
        return ago(1min, QStringLiteral("min"));
    return ago(1h, QStringLiteral("h"));
}

} // namespace tarnPanel
