#include "accessory/power_profiles.h"
#include "device/monitor/accessory_table.h"
#include "end_to_end/dialogue_script.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace tarnAccessoryManager;
using namespace tarnDeviceInfos;
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

QString readPage()
{
    QFile file(protocolPage());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// A line of the table of profiles, with a cell for each.
template <typename Cell> QString lineOfProfiles(const QString &title, const Cell &cell)
{
    QStringList cells {title};
    for (const PowerProfile &profile : powerProfiles)
        cells << cell(profile);
    return "\n| " + cells.join(" | ") + " |\n";
}

QString lineOfLimits(const QString &title, PowerLimits PowerProfile::*limits)
{
    return lineOfProfiles(title, [limits](const PowerProfile &profile) {
        const PowerLimits &watts = profile.*limits;
        return QString("%1 / %2 / %3").arg(watts.pl1).arg(watts.pl2).arg(watts.pl4);
    });
}

} // namespace

TEST(ProtocolDocument, HasEachAccessory)
{
    const QString page = readPage();
    for (const AccessoryKind &kind : accessoryTable) {
        const QRegularExpression line(
            QString("\n\\| [^|]+ \\| `%1` \\| [^|]*\\b%2\\b").arg(kind.name).arg(kind.code));
        EXPECT_TRUE(page.contains(line)) << kind.foundAtFirst;
    }
}

TEST(ProtocolDocument, HasEachProfileWithItsLimits)
{
    const QString page = readPage();
    const QString lines[] = {
        lineOfProfiles(
            "profile", [](const PowerProfile &profile) { return QString("`%1`").arg(profile.name); }),
        lineOfProfiles("number", [](const PowerProfile &profile) { return QString::number(profile.number); }),
        lineOfLimits("supply mode 0 or 2", &PowerProfile::fullSupply),
        lineOfLimits("1", &PowerProfile::weakSupply),
        lineOfLimits("3, KVane charging", &PowerProfile::kvaneCharging),
        lineOfLimits("3, KVane not charging", &PowerProfile::kvaneNotCharging),
        lineOfLimits("other, or not readable", &PowerProfile::fallback),
    };
    for (const QString &line : lines)
        EXPECT_TRUE(page.contains(line)) << qPrintable(line);
}

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
