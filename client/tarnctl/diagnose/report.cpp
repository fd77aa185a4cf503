#include "report.h"

#include "diagnosis.h"
#include "serial_number_filter.h"
#include "shared_file.h"

#include "platform/paths.h"

#include <QFileInfo>
#include <QSysInfo>

#include <exception>
#include <functional>

namespace tarnctl {

namespace {

constexpr qsizetype logLines = 2000;

const QString *const reportedFiles[] = {
    &tarnPlatform::path::savedPowerProfile,
    &tarnPlatform::path::savedGraphicsColour,
    &tarnPlatform::path::ecSettings,
};

// As it is, but for what a text file must not hold.
QString shownContent(const QByteArray &content)
{
    QString shown = QString::fromLocal8Bit(content).remove(u'\r');
    for (QChar &character : shown) {
        if (character.category() == QChar::Other_Control && character != u'\n' && character != u'\t')
            character = QChar::ReplacementCharacter;
    }
    return shown;
}

QString settingsText(const Case &examined)
{
    QStringList parts;
    for (const QString *file : reportedFiles) {
        const QString path = examined.installation.path(*file);
        const QFileInfo info(path);
        if (!info.isFile()) {
            parts << path + (info.exists() ? QStringLiteral(": no file\n") : QStringLiteral(": not there\n"));
            continue;
        }
        QString problem;
        const auto content = readStart(path, problem, mostSettingsBytes);
        const QString size = QStringLiteral(" (%1 bytes):\n").arg(info.size());
        parts << path + size + (content ? shownContent(*content) : problem + u'\n');
    }
    return parts.join(u'\n');
}

QString logText(const Case &examined)
{
    QStringList lines = examined.log.problems();
    lines += examined.log.lastLines(logLines);
    return lines.isEmpty() ? QStringLiteral("none") : lines.join(u'\n');
}

QString versionText(const Case &examined)
{
    return examined.computer.versions().join(u'\n');
}

QString section(const QString &title, const std::function<QString()> &content)
{
    QString text;
    try {
        text = content();
    } catch (const std::exception &failure) {
        text = QStringLiteral("it cannot be collected: %1").arg(QString::fromLocal8Bit(failure.what()));
    }
    return title + QStringLiteral("\n\n") + text + QStringLiteral("\n\n");
}

} // namespace

QString reportOf(const Case &examined, const Findings &findings, bool withSerialNumbers)
{
    const QDateTime time = examined.now.toOffsetFromUtc(examined.now.offsetFromUtc());
    const QString text = section(reportStart + time.toString(Qt::ISODate), [&] { return tableOf(findings); })
        + section(QStringLiteral("== Versions"), [&] { return versionText(examined); })
        + section(QStringLiteral("== Settings files"), [&] { return settingsText(examined); })
        + section(QStringLiteral("== The last %1 lines of the log").arg(logLines),
            [&] { return logText(examined); });
    return withSerialNumbers ? text : withoutSerialNumbers(text);
}

} // namespace tarnctl
