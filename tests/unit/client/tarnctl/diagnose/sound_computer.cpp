#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include "client/tarnctl/diagnose/diagnosis.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tarnClientTest {

using namespace tarnctl;

namespace {

constexpr qint64 serviceProcessId = 1234;

// The start of a library or program for 64-bit Windows.
QByteArray peFile()
{
    QByteArray bytes(256, '\0');
    bytes.replace(0, 2, "MZ");
    bytes[0x3c] = char(0x80);
    bytes.replace(0x80, 6, QByteArray("PE\0\0\x64\x86", 6));
    return bytes;
}

} // namespace

Diagnosis::Diagnosis()
{
    for (const char *name : {"TarnService.exe", "function/inpoutx64.dll", "TarnServiceGui/TarnServiceGui.exe",
             "function/MCU/stm32flash.exe", "function/EC/IFU_XE.exe"})
        write(name, peFile());
    write("function/EC/uiset.ini", "[UI]\r\nIO=1\r\nBinName=old.bin\r\n");
    write("powermodeconfig.xml", "1");
    write("graphicsRGB_config.ini", "[General]\ngraphicsColor=2\n");
    QDir().mkpath(path("downloads"));
    computer.downloads = {path("downloads")};
    log({"debug Tarn Service is running as  \"" TARN_VERSION "\" !", "debug TarnService::start"});

    const QString program = path("TarnService.exe");
    computer.entry.known = ServiceEntry::Known::Yes;
    computer.entry.command = '"' + program + '"';
    computer.entry.start = ServiceEntry::Start::Automatic;
    computer.entry.account = "LocalSystem";
    computer.entry.restarts = 3;
    computer.entry.restartsAfterFailedStop = true;
    computer.entry.state = ServiceEntry::State::Running;
    computer.entry.processId = serviceProcessId;
    computer.programs["TarnService.exe"] = {{program, serviceProcessId, started}};
}

void Diagnosis::write(const QString &name, const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
}

void Diagnosis::remove(const QString &name) const
{
    if (!QFile::remove(path(name)))
        qFatal("cannot remove %s", qPrintable(name));
}

void Diagnosis::log(const QStringList &levelsAndTexts) const
{
    QByteArray lines;
    for (const QString &line : levelsAndTexts) {
        lines += started.toString("yyyy-MM-dd HH:mm:ss.zzz ").toUtf8() + line.section(' ', 0, 0).toUtf8()
            + " 0x7f2a " + line.section(' ', 1).toUtf8() + '\n';
    }
    write("log/TarnService.log", lines);
}

Case Diagnosis::examined()
{
    return examine(computer, "tarnPipe", now);
}

QStringList Diagnosis::linesOf(const QString &subject)
{
    QStringList lines;
    for (const Finding &finding : findingsOf(allChecks(), examined())) {
        if (finding.subject != subject)
            continue;
        const bool needsAdvice = finding.verdict != Verdict::Good && subject != "last warnings";
        EXPECT_TRUE(!needsAdvice || !finding.advice.isEmpty()) << finding.text.toStdString();
        const QString verdict = finding.verdict == Verdict::Good ? "good"
            : finding.verdict == Verdict::Bad                    ? "bad"
                                                                 : "unknown";
        lines << verdict + ": " + QString(finding.text).replace(folder.path(), "FOLDER")
                + (finding.advice.isEmpty()
                        ? QString()
                        : " -> " + QString(finding.advice).replace(folder.path(), "FOLDER"));
    }
    return lines;
}

QString Diagnosis::lineOf(const QString &subject)
{
    return linesOf(subject).value(0);
}

} // namespace tarnClientTest
