#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

using namespace tarnctl;

namespace {

struct File
{
    const char *subject;
    const char *name;
    const char *expected;
    const char *advice;
};

const File files[] = {
    {"port library", "function/inpoutx64.dll", "a 64-bit library", "put the delivered file there"},
    {"GUI program", "TarnServiceGui/TarnServiceGui.exe", "a program for this computer",
        "run the installer again"},
    {"flasher", "function/MCU/stm32flash.exe", "a program for this computer", "put the delivered file there"},
    {"EC tool", "function/EC/IFU_XE.exe", "a program for this computer", "put the delivered file there"},
};

QByteArray peFor(quint16 machine)
{
    QByteArray bytes("MZ");
    bytes.resize(0x3c, '\0');
    bytes += QByteArray("\x40\0\0\0PE\0\0", 8);
    bytes += char(machine & 0xff);
    return bytes + char(machine >> 8);
}

QByteArray elfFor(quint16 machine)
{
    QByteArray bytes("\x7f"
                     "ELF\x02");
    bytes.resize(18, '\0');
    bytes += char(machine & 0xff);
    return bytes + char(machine >> 8);
}

} // namespace

using ProgramFiles = tarnClientTest::Diagnosis;

TEST_F(ProgramFiles, HaveToBeThere)
{
    for (const File &file : files) {
        EXPECT_EQ(lineOf(file.subject), QString("good: FOLDER/%1").arg(file.name));
        remove(file.name);
        EXPECT_EQ(
            lineOf(file.subject), QString("bad: not there: FOLDER/%1 -> %2").arg(file.name, file.advice));
    }
}

TEST_F(ProgramFiles, HaveToBeForThisComputer)
{
    for (const File &file : files) {
        const QString bad =
            QString("bad: FOLDER/%1 is not %2 -> %3").arg(file.name, file.expected, file.advice);
        for (const QByteArray &content : {QByteArray(), QByteArray("MZ"), QByteArray("some text"),
                 peFor(0xaa64), elfFor(3), peFor(0x8664).chopped(1)}) {
            write(file.name, content);
            EXPECT_EQ(lineOf(file.subject), bad) << content.toHex().toStdString();
        }
        for (const QByteArray &content : {peFor(0x8664), elfFor(62)}) {
            write(file.name, content);
            EXPECT_TRUE(lineOf(file.subject).startsWith("good: ")) << content.toHex().toStdString();
        }
    }
    write("function/MCU/stm32flash.exe", "#!/bin/sh\n"); // the flasher of the simulated computer
    EXPECT_TRUE(lineOf("flasher").startsWith("good: "));
    write("function/inpoutx64.dll", "#!/bin/sh\n");
    EXPECT_TRUE(lineOf("port library").startsWith("bad: "));
}

// Windows runs such programs, but no 64-bit program loads such a library.
TEST_F(ProgramFiles, MayBe32BitProgramsButNoLibrary)
{
    for (const File &file : files) {
        write(file.name, peFor(0x14c));
        const bool isLibrary = file.name == QString("function/inpoutx64.dll");
        EXPECT_EQ(lineOf(file.subject).section(':', 0, 0), isLibrary ? "bad" : "good");
    }
}

TEST_F(ProgramFiles, IncludeTheSettingsOfTheEcTool)
{
    EXPECT_EQ(lineOf("EC tool settings"), "good: FOLDER/function/EC/uiset.ini");
    write("function/EC/uiset.ini", "[UI]\r\nSilentRun=1\r\n");
    EXPECT_EQ(lineOf("EC tool settings"),
        "bad: FOLDER/function/EC/uiset.ini has no line BinName that an update can set -> put the delivered "
        "file back");
    remove("function/EC/uiset.ini");
    EXPECT_EQ(lineOf("EC tool settings"),
        "bad: not there: FOLDER/function/EC/uiset.ini -> put the delivered file back");
}
