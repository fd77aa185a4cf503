#include "simulator/recording/comparison.h"
#include "simulator/tool/recording_text.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"

#include <optional>

namespace tarnSimulator {

namespace {

const QString factorOption = QStringLiteral("--factor");
constexpr double usualFactor = 3;
constexpr double smallestFactor = 1;
constexpr double largestFactor = 1e6;
constexpr double usPerMs = 1000;

struct KindText
{
    Deviation::Kind kind;
    const char *text;
};
constexpr KindText deviationKinds[] = {
    {Deviation::Kind::WrongValue, "wrong value"},
    {Deviation::Kind::Measurement, "another measurement"},
    {Deviation::Kind::Timing, "other timing"},
};

struct ComparisonWish
{
    QString file;
    double factor = usualFactor;
};

std::optional<ComparisonWish> parseComparison(QStringList words)
{
    ComparisonWish wanted;
    if (const auto at = words.indexOf(factorOption); at >= 0) {
        bool isNumber = false;
        wanted.factor = words.value(at + 1).toDouble(&isNumber);
        // Written so that something that is no number at all is refused, too.
        if (!isNumber || !(wanted.factor >= smallestFactor && wanted.factor <= largestFactor))
            return std::nullopt;
        words.remove(at, 2);
    }
    if (words.size() != 1 || words.first().startsWith(QLatin1String("--")))
        return std::nullopt;
    wanted.file = words.first();
    return wanted;
}

void printDeviation(QTextStream &out, const Deviation &deviation)
{
    out << "    access " << deviation.number << ", " << secondsText(deviation.us)
        << " s: " << toQString(deviation.what);
    if (deviation.longestUs > 0) {
        out << ", for " << static_cast<double>(deviation.longestUs) / usPerMs << " ms at least, allowed are "
            << static_cast<double>(deviation.allowedUs) / usPerMs << " ms";
    }
    if (deviation.count > 1)
        out << " (" << deviation.count << " times)";
    out << '\n';
}

void printDeviations(QTextStream &out, const DeviationList &deviations)
{
    for (const KindText &kind : deviationKinds) {
        const auto some = deviations.of(kind.kind);
        if (some.empty())
            continue;
        out << kind.text << ":\n";
        for (const Deviation &deviation : some)
            printDeviation(out, deviation);
        if (const auto others = deviations.others(kind.kind); others > 0)
            out << "    and " << others << " more\n";
    }
}

} // namespace

ExitCode compareRecording(ToolContext &context, const QStringList &arguments)
{
    const auto wanted = parseComparison(arguments);
    if (!wanted) {
        return complain(context, WrongUsage,
            QStringLiteral("compare takes one file, and --factor with a number from 1 to 1000000"));
    }
    const auto recording = openRecording(context, wanted->file);
    if (!recording)
        return Failed;
    const ChannelDecoder decoder = decode(*recording);
    Comparison comparison(wanted->factor);
    for (const DecodedAccess &access : decoder.accesses())
        comparison.take(access);
    for (const Oddity &oddity : decoder.oddities())
        comparison.take(oddity);
    comparison.finish();

    printHeader(context.out, *recording);
    printDeviations(context.out, comparison.deviations());
    context.out << decoder.accesses().size() << " accesses, " << comparison.compared()
                << " answers compared\n";
    const ExitCode end = printEnd(context, *recording, decoder);
    if (comparison.deviations().has(Deviation::Kind::WrongValue))
        return Failed;
    if (comparison.compared() == 0)
        return complain(context, Failed, QStringLiteral("nothing was compared"));
    return end;
}

} // namespace tarnSimulator
