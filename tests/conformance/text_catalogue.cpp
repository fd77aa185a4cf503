#include "conformance/text_catalogue.h"

#include "accessory/power_profiles.h"
#include "device/monitor/accessory_table.h"

#include <QDir>
#include <QFile>

namespace tarnTest {
namespace {

const QString reasonMark = QStringLiteral(" not here: ");

const QStringList kinds = {"debug", "warning", "fatal", "out", "err", "exit", "reply", "notification", "file",
    "name", "started", "device", "manager", "event", "desktop"};

// The words that a place in a line stands for.
struct WordList
{
    QString place;
    QStringList words;
};

WordList profileNames()
{
    WordList list {QStringLiteral("{profile}"), {}};
    for (const auto &profile : tarnAccessoryManager::powerProfiles)
        list.words << QString::fromLatin1(profile.name);
    return list;
}

WordList profileNumbers()
{
    WordList list {QStringLiteral("{profile number}"), {}};
    for (const auto &profile : tarnAccessoryManager::powerProfiles)
        list.words << QString::number(profile.number);
    return list;
}

WordList accessoryNames()
{
    WordList list {QStringLiteral("{accessory}"), {}};
    for (const auto &kind : tarnDeviceInfos::accessoryTable)
        list.words << QString::fromLatin1(kind.name);
    list.words.removeDuplicates();
    return list;
}

// A text for each word of the list whose place is in the text.
QStringList eachOf(const QString &text)
{
    static const WordList lists[] = {profileNames(), profileNumbers(), accessoryNames()};
    for (const WordList &list : lists) {
        if (!text.contains(list.place))
            continue;
        QStringList texts;
        for (const QString &word : list.words)
            texts << QString(text).replace(list.place, word);
        return texts;
    }
    return {text};
}

} // namespace

std::vector<CatalogueText> readCatalogueLines(const QString &group, const QStringList &lines, QString &error)
{
    std::vector<CatalogueText> texts;
    for (const QString &line : lines) {
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const qsizetype mark = line.lastIndexOf(QLatin1Char('"') + reasonMark);
        const QString entry = mark < 0 ? line : line.left(mark + 1);
        const QString kind = entry.section(QLatin1Char(' '), 0, 0);
        const QString quoted = entry.section(QLatin1Char(' '), 1);
        if (!kinds.contains(kind) || quoted.size() < 3 || !quoted.startsWith(QLatin1Char('"'))
            || !quoted.endsWith(QLatin1Char('"'))) {
            error = QStringLiteral("%1: not a text of the catalogue: %2").arg(group, line);
            return {};
        }
        const QString reason = mark < 0 ? QString() : line.sliced(mark + 1 + reasonMark.size());
        for (const QString &text : eachOf(quoted.sliced(1, quoted.size() - 2)))
            texts.push_back({group, kind, text, reason, TextPattern(text)});
    }
    return texts;
}

std::vector<CatalogueText> readCatalogue(const QString &folder, QString &error)
{
    std::vector<CatalogueText> texts;
    const QDir files(folder);
    for (const QString &name : files.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name)) {
        QFile file(files.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            error = QStringLiteral("cannot read %1").arg(file.fileName());
            return {};
        }
        const QString group = name.chopped(4).replace(QLatin1Char('_'), QLatin1Char(' '));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (CatalogueText &text : readCatalogueLines(group, lines, error))
            texts.push_back(std::move(text));
        if (!error.isEmpty())
            return {};
    }
    if (texts.empty())
        error = QStringLiteral("no texts in %1").arg(folder);
    return texts;
}

} // namespace tarnTest
