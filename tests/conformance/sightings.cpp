#include "conformance/sightings.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <iterator>

namespace tarnTest {
namespace {

bool isLogLevel(const QString &kind)
{
    return kind == QStringLiteral("debug") || kind == QStringLiteral("warning")
        || kind == QStringLiteral("fatal");
}

// Whether what was recorded as one kind shows a text of the catalogue's kind.
bool shows(const QString &recorded, const QString &kind)
{
    if (recorded == QStringLiteral("said"))
        return isLogLevel(kind) || kind == QStringLiteral("out") || kind == QStringLiteral("err");
    if (recorded == QStringLiteral("message"))
        return kind == QStringLiteral("notification");
    return recorded == kind;
}

// Qt's own warnings begin with the class that gives them; the other lines that the service never logs begin
// as listed here.
bool isOfTheService(const QString &kind, const QString &text)
{
    static const QRegularExpression qtClass(QStringLiteral("^Q[A-Z]\\w+(::|: )"));
    static const QString others[] = {
        QStringLiteral("There is no simulated computer: "), QStringLiteral("TarnServiceGui (simulated) ")};
    if (text.isEmpty() || (kind != QStringLiteral("debug") && qtClass.match(text).hasMatch()))
        return false;
    return std::none_of(std::begin(others), std::end(others),
        [&text](const QString &beginning) { return text.startsWith(beginning); });
}

} // namespace

Sightings::Sightings(std::vector<CatalogueText> texts)
    : catalogue(std::move(texts))
    , seenBy(catalogue.size())
{
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        if (catalogue[i].pattern.hasValues())
            textsWithValues.push_back(i);
        else
            fixedTexts.insert(catalogue[i].pattern.beginning(), i);
    }
}

bool Sightings::readFolder(const QString &folder, QString &error)
{
    const QDir files(folder);
    const QStringList names = files.entryList(QDir::Files);
    if (names.isEmpty()) {
        error = QStringLiteral("no test has recorded anything in %1").arg(folder);
        return false;
    }
    for (const QString &name : names) {
        QFile file(files.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            error = QStringLiteral("cannot read %1").arg(file.fileName());
            return false;
        }
        read(QString::fromUtf8(file.readAll()));
    }
    return true;
}

void Sightings::read(const QString &record)
{
    QString test;
    for (const QString &line : record.split(QLatin1Char('\n'))) {
        const qsizetype tab = line.indexOf(QLatin1Char('\t'));
        if (tab < 0)
            continue;
        const QString kind = line.left(tab);
        const QString text = line.sliced(tab + 1);
        if (kind == QStringLiteral("test"))
            test = text;
        else
            recorded[{kind, text}].insert(test);
    }
}

void Sightings::join()
{
    for (const auto &[seen, tests] : recorded)
        joinOne(seen.first, seen.second, tests);
}

void Sightings::joinOne(const QString &kind, const QString &text, const Tests &tests)
{
    bool rightKind = false;
    const CatalogueText *otherLevel = nullptr;
    const auto lookAt = [&](std::size_t index) {
        const CatalogueText &entry = catalogue[index];
        const bool right = shows(kind, entry.kind);
        const bool other = !right && isLogLevel(kind) && isLogLevel(entry.kind);
        if ((!right && !other) || !entry.pattern.fits(text))
            return;
        if (right) {
            rightKind = true;
            seenBy[index] += tests;
        } else {
            otherLevel = &entry;
        }
    };
    for (auto [at, end] = fixedTexts.equal_range(text); at != end; ++at)
        lookAt(*at);
    for (const std::size_t index : textsWithValues)
        lookAt(index);
    // Not what a process said: there the lines of two threads may be mixed.
    if (rightKind || !isLogLevel(kind))
        return;
    if (!otherLevel && isOfTheService(kind, text))
        unlisted << QStringLiteral("in no list: %1 \"%2\" (%3)").arg(kind, text, *tests.begin());
    if (otherLevel)
        wrongKinds << QStringLiteral("%1: %2, not %3: \"%4\" (%5)")
                          .arg(otherLevel->group, kind, otherLevel->kind, text, *tests.begin());
}

QStringList Sightings::testsOf(std::size_t index) const
{
    QStringList names(seenBy[index].begin(), seenBy[index].end());
    names.sort();
    return names;
}

QStringList Sightings::complaints() const
{
    QStringList lines;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const CatalogueText &entry = catalogue[i];
        const QString named = QStringLiteral("%1: %2 \"%3\"").arg(entry.group, entry.kind, entry.text);
        if (seenBy[i].isEmpty() && entry.notHere.isEmpty())
            lines << QStringLiteral("no test saw ") + named;
        if (!seenBy[i].isEmpty() && !entry.notHere.isEmpty())
            lines << QStringLiteral("%1 is said not to be seen here, but was, by %2")
                         .arg(named, testsOf(i).first());
    }
    return lines + wrongKinds + unlisted;
}

} // namespace tarnTest
