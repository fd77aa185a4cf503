#include "end_to_end/dialogue_script.h"

#include <QFile>

#include <gtest/gtest.h>

using tarnTest::DialogueScript;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;

namespace {

// The lines of all fenced blocks of the page that name no language, in order.
QStringList exampleLines(const QString &page)
{
    QFile file(page);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    QString fence; // of the block that the line is in
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith("```"))
            fence = fence.isEmpty() ? line : QString();
        else if (fence == "```")
            lines << line;
    }
    return lines;
}

QString protocolPage()
{
    const QString folder = qEnvironmentVariable("TARN_DOCS_FOLDER");
    return (folder.isEmpty() ? QStringLiteral(TARN_DOCS_FOLDER) : folder) + "/protocol.md";
}

} // namespace

// The page is followed from top to bottom as one conversation.
TEST(ProtocolDocument, ShowsWhatTheServiceReallySays)
{
    const QStringList lines = exampleLines(protocolPage());
    ASSERT_GT(lines.filter("-> ").size(), 20);
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    ServiceClient client;
    ASSERT_TRUE(client.connectToService());
    ASSERT_TRUE(client.waitForNotification("getTarnBatteryNum", "80"));
    DialogueScript(service, client, DialogueScript::Others::AreSkipped).follow(lines);
    EXPECT_EQ(service.stop(), 0);
}
