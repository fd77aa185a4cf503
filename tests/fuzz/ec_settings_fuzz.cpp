// The settings file of the EC tool. Input: the firmware file's name up to the first line end, then the file.
#include "fuzzed_machine.h"
#include "harness.h"
#include "update/firmware_file_name.h"
#include "update/firmware_updater.h"

using tarnFuzz::FuzzedMachine;
using tarnFuzz::require;

namespace {

// A second implementation, different from the service's: keys in order, with the line that replaces theirs.
struct ExpectedLine
{
    const char *key;
    const char *line;
};
constexpr ExpectedLine expectedLines[] = {
    {"ACPI PORT", "ACPI PORT=0x68"},
    {"FW VERSION SHOW", "FW VERSION SHOW=0"},
    {"HEX DISPLAY", "HEX DISPLAY=0"},
    {"Read Method", "Read Method=0"},
    {"IO", "IO=1"},
    {"BRAM BANK", "BRAM BANK=0"},
    {"Read BYTES", "Read BYTES=3"},
    {"BRAM Start index", "BRAM Start index=0x7"},
    {"FlashEnd CMD", "FlashEnd CMD=0xFC"},
    {"AutoFlash", "AutoFlash=1"},
    {"Warring Show", "Warring Show=0"},
    {"SilentRun", "SilentRun=1"},
    {"BinName", nullptr},
    {"Shutdown", "Shutdown=1"},
};

QByteArray expectedLine(const QByteArray &line, const QByteArray &name)
{
    for (const ExpectedLine &row : expectedLines) {
        if (line.contains(row.key))
            return row.line ? QByteArray(row.line) : "BinName=" + name;
    }
    return line;
}

QByteArray expectedFile(const QByteArray &before, const QByteArray &name)
{
    QByteArray after;
    for (qsizetype start = 0; start < before.size();) {
        qsizetype end = before.indexOf('\n', start);
        if (end < 0)
            end = before.size();
        after += expectedLine(before.mid(start, end - start), name) + '\n';
        start = end + 1;
    }
    return after;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input = tarnFuzz::bytesOf(data, size);
    const qsizetype nameEnd = input.indexOf('\n');
    if (nameEnd < 0)
        return -1;
    const QByteArray name = input.left(nameEnd);
    const QByteArray before = input.mid(nameEnd + 1);
    const bool isGoodName = tarnFirmwareUpdate::isSafeFirmwareName(QString::fromLocal8Bit(name));

    const FuzzedMachine &machine = FuzzedMachine::instance();
    machine.folder.write("uiset.ini", before);
    const bool done =
        tarnFirmwareUpdate::FirmwareUpdater::instance()->modifyEcIniFile("./uiset.ini", name.toStdString());
    require(done == isGoodName, "settings are rewritten for a good name only");
    const QByteArray expected = isGoodName ? expectedFile(before, name) : before;
    require(machine.folder.read("uiset.ini") == expected, "the settings are as expected");
    return 0;
}
