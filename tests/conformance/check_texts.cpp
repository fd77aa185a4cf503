#include "conformance/sightings.h"

#include <QFile>

#include <algorithm>
#include <cstdio>

using tarnTest::Sightings;

// check_texts CATALOGUE RECORDINGS REPORT: which tests saw which text of the service. The list goes to the
// report; fails when a text was seen by none, or a line of the log that a test caught is no text of
// the catalogue.
namespace {

constexpr qsizetype namedTests = 3;

QString testList(const QStringList &tests)
{
    QString names = tests.mid(0, namedTests).join(QStringLiteral(", "));
    if (tests.size() > namedTests)
        names += QStringLiteral(" and %1 more").arg(tests.size() - namedTests);
    return names;
}

QString report(const Sightings &sightings)
{
    QString lines = QStringLiteral("# The service's texts, and the tests that saw them\n");
    QString group;
    for (std::size_t i = 0; i < sightings.texts().size(); ++i) {
        const tarnTest::CatalogueText &text = sightings.texts()[i];
        if (text.group != group)
            lines += QStringLiteral("\n## %1\n\n").arg(text.group);
        group = text.group;
        const QString seen = text.notHere.isEmpty() ? testList(sightings.testsOf(i))
                                                    : QStringLiteral("not here: ") + text.notHere;
        lines += QStringLiteral("- %1 `%2`: %3\n").arg(text.kind, text.text, seen);
    }
    return lines;
}

int fail(const QString &reason)
{
    std::fprintf(stderr, "%s\n", qPrintable(reason));
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
        return fail(QStringLiteral("usage: check_texts CATALOGUE RECORDINGS REPORT"));
    QString error;
    Sightings sightings(tarnTest::readCatalogue(QString::fromLocal8Bit(argv[1]), error));
    if (!error.isEmpty() || !sightings.readFolder(QString::fromLocal8Bit(argv[2]), error))
        return fail(error);
    sightings.join();

    QFile file(QString::fromLocal8Bit(argv[3]));
    const QByteArray page = report(sightings).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(page) != page.size())
        return fail(QStringLiteral("cannot write %1").arg(file.fileName()));

    const QStringList complaints = sightings.complaints();
    if (!complaints.isEmpty())
        return fail(complaints.join(QLatin1Char('\n')));
    const auto excused = std::count_if(sightings.texts().begin(), sightings.texts().end(),
        [](const tarnTest::CatalogueText &text) { return !text.notHere.isEmpty(); });
    std::printf("%zu texts, each seen by a test but for %td that cannot be here (%s)\n",
        sightings.texts().size(), excused, argv[3]);
    return 0;
}
