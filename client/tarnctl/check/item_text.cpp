#include "item_text.h"

#include <QRegularExpression>

namespace tarnctl {

bool matches(QLatin1StringView expected, const QString &text)
{
    const QRegularExpression form(QStringLiteral("\\A(?:%1)\\z").arg(expected.toString()));
    return expected.isEmpty() || form.match(text).hasMatch();
}

QString secondsText(std::chrono::milliseconds time)
{
    return QStringLiteral("%1 s").arg(static_cast<double>(time.count()) / 1000, 0, 'f', 1);
}

QString requestLine(const QString &command, const QString &data)
{
    return QStringLiteral("  ") + (command + u' ' + data).trimmed();
}

} // namespace tarnctl
