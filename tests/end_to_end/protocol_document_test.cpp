#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

#include "simulator/tool/run_tool.h"

#include <QFile>
#include <QTextStream>

#include <gtest/gtest.h>

using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::waitUntil;

namespace {

// The lines of all fenced blocks of the page, in order.
QStringList exampleLines(const QString &page)
{
    QFile file(page);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    bool inside = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith("```"))
            inside = !inside;
        else if (inside)
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

    qsizetype seen = client.documents().size();
    for (const QString &line : lines) {
        const QString rest = line.section(QLatin1Char(' '), 1);
        if (line.startsWith("-> ")) {
            client.write(rest.toUtf8());
        } else if (line.startsWith("<- ")) {
            qsizetype at = -1;
            EXPECT_TRUE(waitUntil(
                [&] {
                    at = client.documents().indexOf(rest.toUtf8(), seen);
                    return at >= 0;
                },
                20000))
                << line.toStdString() << "\nafter: " << client.documents().mid(seen).join('\n').toStdString();
            if (at >= 0)
                seen = at + 1;
        } else {
            ASSERT_TRUE(line.startsWith("tarnsim ")) << line.toStdString();
            QString out;
            QString err;
            QTextStream outStream(&out);
            QTextStream errStream(&err);
            const QStringList arguments =
                QStringList({"tarnsim", "--state", service.path("function/simulated_computer.state")})
                + rest.split(' ');
            EXPECT_EQ(tarnSimulator::runTool(arguments, outStream, errStream), 0) << err.toStdString();
        }
    }
    EXPECT_EQ(service.stop(), 0);
}
