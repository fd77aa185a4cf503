#include "simulator/recording/recording_summary.h"
#include "simulator/tool/recording_text.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

namespace {

const QString summaryOption = QStringLiteral("--summary");

// "median/p99/largest", in microseconds.
QString spreadText(const TimeSpread &spread)
{
    if (spread.count() == 0)
        return QStringLiteral("-");
    return QStringLiteral("%1/%2/%3")
        .arg(spread.quantile(0.5))
        .arg(spread.quantile(0.99))
        .arg(spread.quantile(1));
}

QString valuesText(const std::map<std::uint8_t, std::uint64_t> &values)
{
    QStringList texts;
    for (const auto &[value, count] : values)
        texts << toQString(hexText(value, 2)) + (count > 1 ? QStringLiteral(" x%1").arg(count) : QString());
    return texts.join(QStringLiteral(", "));
}

void printAccesses(QTextStream &out, const std::vector<DecodedAccess> &accesses)
{
    for (const DecodedAccess &access : accesses) {
        out << QString::number(access.number).rightJustified(8) << ' '
            << secondsText(access.startUs).rightJustified(14) << "  "
            << (access.kind == DecodedAccess::Kind::Read ? "read " : "write") << "  "
            << registerText(access.address) << " = " << toQString(hexText(access.value, 2)) << " ("
            << access.value << ")\n";
    }
}

void printSummary(QTextStream &out, const std::vector<DecodedAccess> &accesses)
{
    out << "times in us: median/p99/largest\n";
    for (const auto &[address, row] : summaryOf(accesses)) {
        out << registerText(address) << ": " << row.reads << " reads, " << row.writes
            << " writes, taken after " << spreadText(row.acceptanceUs) << ", answered after "
            << spreadText(row.answerUs) << '\n';
        if (row.reads > 0)
            out << "    read: " << valuesText(row.readValues) << '\n';
        if (row.writes > 0)
            out << "    written: " << valuesText(row.writtenValues) << '\n';
    }
}

void printOddities(QTextStream &out, const ChannelDecoder &decoder)
{
    for (const Oddity &oddity : decoder.oddities()) {
        out << (oddity.isBroken ? "broken" : "note") << ", access " << oddity.number << ", "
            << secondsText(oddity.us) << " s: " << toQString(oddity.text) << '\n';
    }
    for (const auto &[port, count] : decoder.unknownPorts())
        out << "unknown port " << toQString(hexText(port, 4)) << ": " << count << " accesses\n";
    if (decoder.otherStatusBits() != 0) {
        out << "other status bits that were set: " << toQString(hexText(decoder.otherStatusBits(), 2))
            << '\n';
    }
}

} // namespace

ExitCode showRecording(ToolContext &context, const QStringList &arguments)
{
    QStringList words = arguments;
    const bool isSummary = words.removeAll(summaryOption) > 0;
    if (words.size() != 1)
        return complain(context, WrongUsage, QStringLiteral("recording takes one file, and --summary"));
    const auto recording = openRecording(context, words.first());
    if (!recording)
        return Failed;
    const ChannelDecoder decoder = decode(*recording);
    printHeader(context.out, *recording);
    if (isSummary)
        printSummary(context.out, decoder.accesses());
    else
        printAccesses(context.out, decoder.accesses());
    printOddities(context.out, decoder);
    return printEnd(context, *recording, decoder);
}

} // namespace tarnSimulator
