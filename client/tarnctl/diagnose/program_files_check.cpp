#include "checks.h"
#include "shared_file.h"

#include "platform/paths.h"
#include "update/ec_settings.h"

#include <QFileInfo>
#include <QtEndian>

namespace tarnctl {

namespace {

constexpr qint64 mostHeaderBytes = 4096;

constexpr quint16 pe64 = 0x8664; // machine of a program for Windows on 64-bit PCs
constexpr quint16 pe32 = 0x14c;

// Whether these are the first bytes of a program or library for such a machine, or for Linux on a 64-bit PC.
bool isFor(const QByteArray &start, const QList<quint16> &peMachines)
{
    constexpr qsizetype offsetOfPeHeader = 0x3c;
    constexpr qsizetype elfMachineOffset = 18;
    constexpr quint16 elfMachine = 62;
    const auto halfWord = [&start](qsizetype at) {
        return at >= 0 && at + 2 <= start.size() ? qFromLittleEndian<quint16>(start.constData() + at)
                                                 : quint16(0);
    };
    if (start.startsWith("\x7f"
                         "ELF"))
        return halfWord(elfMachineOffset) == elfMachine;
    const qsizetype header = halfWord(offsetOfPeHeader);
    return start.startsWith("MZ") && start.mid(header, 4) == QByteArray("PE\0\0", 4)
        && peMachines.contains(halfWord(header + 4));
}

bool isLibrary(const QByteArray &start)
{
    return isFor(start, {pe64});
}

// Windows runs 32-bit programs as well. The flasher of the simulated computer is a script.
bool isProgram(const QByteArray &start)
{
    return start.startsWith("#!") || isFor(start, {pe64, pe32});
}

Finding findingOf(const Case &examined, const QString &subject, const QString &file,
    bool (*isRight)(const QByteArray &), const QString &expected, const QString &whatToDo)
{
    const QString path = examined.installation.path(file);
    const QFileInfo info(path);
    if (!info.isFile()) {
        const QString text = info.exists() ? QStringLiteral("no file: %1") : QStringLiteral("not there: %1");
        return {Verdict::Bad, subject, text.arg(path), whatToDo};
    }
    QString problem;
    const auto start = readStart(path, problem, mostHeaderBytes);
    if (!start)
        return {
            Verdict::Unknown, subject, QStringLiteral("%1: %2").arg(path, problem), advice::asAdministrator};
    if (!isRight(*start))
        return {Verdict::Bad, subject, QStringLiteral("%1 is not %2").arg(path, expected), whatToDo};
    return {Verdict::Good, subject, path};
}

// The tool needs the line of the firmware file, which the service puts there.
Finding ecSettingsFinding(const Case &examined)
{
    const QString subject = QStringLiteral("EC tool settings");
    const QString path = examined.installation.path(tarnPlatform::path::ecSettings);
    const QString whatToDo = QStringLiteral("put the delivered file back");
    if (!QFileInfo(path).isFile())
        return {Verdict::Bad, subject, QStringLiteral("not there: %1").arg(path), whatToDo};
    QString problem;
    const auto content = readStart(path, problem, mostSettingsBytes);
    if (!content)
        return {
            Verdict::Unknown, subject, QStringLiteral("%1: %2").arg(path, problem), advice::asAdministrator};
    bool hasFileLine = false;
    for (const QByteArray &line : content->split('\n')) {
        static_cast<void>(tarnFirmwareUpdate::settingsLine(line.toStdString(), [&hasFileLine] {
            hasFileLine = true;
            return std::string();
        }));
    }
    if (!hasFileLine)
        return {Verdict::Bad, subject,
            QStringLiteral("%1 has no line BinName that an update can set").arg(path), whatToDo};
    return {Verdict::Good, subject, path};
}

} // namespace

Findings checkProgramFiles(const Case &examined)
{
    using namespace tarnPlatform::path;
    const QString library = QStringLiteral("a 64-bit library");
    const QString program = QStringLiteral("a program for this computer");
    const QString delivered = QStringLiteral("put the delivered file there");
    return {
        findingOf(examined, QStringLiteral("port library"), portLibrary, isLibrary, library, delivered),
        findingOf(examined, QStringLiteral("GUI program"),
            QStringLiteral("TarnServiceGui/TarnServiceGui.exe"), isProgram, program, advice::reinstall),
        findingOf(examined, QStringLiteral("flasher"), mcuTool, isProgram, program, delivered),
        findingOf(examined, QStringLiteral("EC tool"), ecTool, isProgram, program, delivered),
        ecSettingsFinding(examined),
    };
}

} // namespace tarnctl
