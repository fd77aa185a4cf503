#include "platform/log_line.h"

#include <QList>
#include <QStringView>

namespace tarnPlatform {
namespace {

constexpr char cutMark[] = "\u2026"; // an ellipsis, three bytes

// By QtMsgType.
const char *const levels[] = {"debug", "warning", "critical", "fatal", "info"};
static_assert(
    QtDebugMsg == 0 && QtWarningMsg == 1 && QtCriticalMsg == 2 && QtFatalMsg == 3 && QtInfoMsg == 4);

// Not so control characters, and those that change the direction of writing.
bool isShown(char32_t character)
{
    constexpr char32_t lineSeparator = 0x2028;
    constexpr char32_t paragraphSeparator = 0x2029;
    return QChar::isPrint(character) && character != lineSeparator && character != paragraphSeparator;
}

QString escaped(char32_t character)
{
    if (character == U'\n')
        return QStringLiteral("\\n");
    if (character == U'\r')
        return QStringLiteral("\\r");
    return QStringLiteral("\\u")
        + QString::number(static_cast<quint32>(character), 16).rightJustified(4, QLatin1Char('0'));
}

// Not within a character.
void cut(QByteArray &line, qsizetype size)
{
    constexpr int continuation = 0x80; // the highest two bits of each byte of a character but the first
    while ((line.at(size) & 0xC0) == continuation)
        --size;
    line.truncate(size);
    line += cutMark;
}

} // namespace

QByteArray logLine(const QDateTime &time, QtMsgType type, Qt::HANDLE thread, const QString &text)
{
    QString line = time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz ")) + QLatin1String(levels[type])
        + QStringLiteral(" 0x") + QString::number(reinterpret_cast<quintptr>(thread), 16) + QLatin1Char(' ');
    // No character needs less than a byte. Half a character becomes U+FFFD.
    for (const char32_t character : QStringView(text).left(longestLogLine).toUcs4()) {
        if (line.size() > longestLogLine)
            break;
        if (isShown(character))
            line += QChar::fromUcs4(character);
        else
            line += escaped(character);
    }
    constexpr qsizetype lineFeed = 1;
    QByteArray bytes = line.toUtf8();
    if (bytes.size() > longestLogLine - lineFeed)
        cut(bytes, longestLogLine - lineFeed - (sizeof cutMark - 1));
    return bytes + '\n';
}

} // namespace tarnPlatform
