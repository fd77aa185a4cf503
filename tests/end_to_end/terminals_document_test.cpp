#include "end_to_end/service_process.h"
#include "support/pipe_peer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

using tarnTest::ServiceProcess;

namespace {

struct Session
{
    QByteArray typed;
    QStringList shown;
};

// The indented block with this line in it: what a person types follows a "$", the rest is what they see.
Session sessionWith(const QString &typedLine)
{
    QFile file(QStringLiteral(TARN_DOCS_FOLDER "/terminals.md"));
    Session session;
    if (!file.open(QIODevice::ReadOnly))
        return session;
    const QString prompt = QStringLiteral("    $ ");
    bool isFound = false;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const bool isInBlock = line.startsWith(QStringLiteral("    "));
        if (!isInBlock && isFound)
            break;
        if (!isInBlock) {
            session = {};
        } else if (line.startsWith(prompt)) {
            session.typed += line.mid(prompt.size()).toUtf8() + '\n';
            isFound = isFound || line.contains(typedLine);
        } else {
            session.shown << line.trimmed();
        }
    }
    return isFound ? session : Session();
}

} // namespace

// Pasted all at once: no step may need a pause before it, or read the lines after it as its input.
TEST(TerminalsDocument, FirmwareStepsCanBePasted)
{
    const Session session = sessionWith(QStringLiteral("./tarnctl update-mcu"));
    ASSERT_FALSE(session.shown.isEmpty());
    ServiceProcess service;
    const QString folder = service.path(QString());
    qputenv("HOME", QFile::encodeName(folder));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder));
    for (const char *tool : {"tarnctl", "tarnsim", "tarnserial"})
        ASSERT_TRUE(QFile::link(
            tarnTest::builtProgram(QString::fromUtf8(tool)), service.path(QString::fromUtf8(tool))));
    ASSERT_TRUE(service.start());

    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start(QStringLiteral("bash"), QStringList());
    shell.write(session.typed);
    shell.closeWriteChannel();
    ASSERT_TRUE(shell.waitForFinished(60000));
    const QString output = QString::fromUtf8(shell.readAll());
    EXPECT_EQ(shell.exitCode(), 0) << output.toStdString();
    for (const QString &line : session.shown)
        EXPECT_TRUE(output.contains(u'\n' + line + u'\n')) << output.toStdString();
    const QString port = service.path(QStringLiteral(R"(function/MCU/\\.\COM1)"));
    EXPECT_TRUE(tarnTest::waitUntil([&port] { return !QFileInfo(port).isSymLink(); }));
    EXPECT_EQ(service.stop(), 0);
}
