// A recording of the EC's ports that somebody has sent. Input: its lines, perhaps without their checksums,
// which are then made, because hardly any random line would have the right one.
#include "device/recording/ec_record.h"
#include "device/recording/recording.h"
#include "harness.h"
#include "simulator/recording/channel_decoder.h"
#include "simulator/recording/comparison.h"
#include "simulator/recording/recording_summary.h"
#include "simulator/replay/request_places.h"

#include <QFile>
#include <QTemporaryDir>

#include <sstream>

using namespace tarnRecording;
using tarnFuzz::require;

namespace {

std::string withChecksums(const std::string &text)
{
    std::string all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        all += recordOf(line) || headerOf(line) ? line + '\n' : checkedLine(line);
    return all;
}

void checkRecord(const EcRecord &record)
{
    const std::string line = lineOf(record);
    require(
        recordOf(std::string_view(line).substr(0, line.size() - 1)) == record, "a record can be read back");
}

std::uint64_t portAccesses(const Recording &recording)
{
    std::uint64_t count = 0;
    for (const EcRecord &record : recording.records)
        count += record.isOfPort() ? record.count : 0;
    return count;
}

std::uint64_t wrongOf(const tarnSimulator::DeviationList &deviations)
{
    constexpr auto wrong = tarnSimulator::Deviation::Kind::WrongValue;
    const auto listed = deviations.of(wrong);
    require(listed.size() <= tarnSimulator::DeviationList::mostDifferent, "the list has an end");
    std::uint64_t count = deviations.others(wrong);
    for (const auto &deviation : listed)
        count += deviation.count;
    return count;
}

void checkAccesses(const Recording &recording)
{
    tarnSimulator::ChannelDecoder decoder(recording.header.firstAccess);
    for (const EcRecord &record : recording.records)
        decoder.take(record);
    decoder.finish();
    const auto &accesses = decoder.accesses();
    require(accesses.size() * 6 <= portAccesses(recording), "a register access takes at least six of ports");
    std::uint64_t counted = 0;
    for (const auto &[address, row] : tarnSimulator::summaryOf(accesses))
        counted += row.reads + row.writes;
    require(counted == accesses.size(), "the summary counts each access once");
    tarnSimulator::Comparison comparison(3);
    for (const auto &access : accesses)
        comparison.take(access);
    for (const auto &oddity : decoder.oddities())
        comparison.take(oddity);
    comparison.finish();
    require(comparison.compared() <= accesses.size(), "each access is judged once");
    std::uint64_t broken = 0;
    for (const auto &oddity : decoder.oddities())
        broken += oddity.isBroken ? 1 : 0;
    require(wrongOf(comparison.deviations()) >= broken, "what was not possible is listed or counted");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("ec.recording"));
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "the file can be written");
    file.write(QByteArray::fromStdString(withChecksums({data, data + size})));
    file.close();
    std::string error;
    const auto recording = readRecording(path.toStdString(), error);
    require(recording.has_value() == error.empty(), "there is a reason when it cannot be read");
    if (!recording)
        return 0;
    const std::string firstLine = lineOf(recording->header);
    require(headerOf(std::string_view(firstLine).substr(0, firstLine.size() - 1)) == recording->header,
        "the header can be read back");
    for (const EcRecord &record : recording->records)
        checkRecord(record);
    checkAccesses(*recording);
    const auto steps = tarnSimulator::placedSteps(*recording, {{0, {}, "{}"}, {3, {}, "{}"}, {7, {}, "{}"}});
    require(
        steps.at(0).after <= steps.at(1).after && steps.at(1).after <= steps.at(2).after, "the order stays");
    return 0;
}
