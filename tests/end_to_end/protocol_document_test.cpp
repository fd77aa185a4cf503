#include "accessory/power_profiles.h"
#include "client/command_catalogue.h"
#include "client/notification_table.h"
#include "client/reply_deadline.h"
#include "device/monitor/accessory_table.h"
#include "end_to_end/dialogue_script.h"

#include <QFile>
#include <QHash>
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

// The commands of the table of time limits that have a row of their own, with the limit.
QHash<QString, QString> limitsOfCommands(const QString &page)
{
    const QRegularExpression row(
        "^\\| ([0-9]+ (?:s|min)) \\| (.*) \\|$", QRegularExpression::MultilineOption);
    const QRegularExpression command("`([A-Za-z]+)`");
    QHash<QString, QString> limits;
    for (const auto &found : row.globalMatch(page.section("\n## Asking\n", 1).section("\n## ", 0, 0))) {
        for (const auto &name : command.globalMatch(found.captured(2)))
            limits.insert(name.captured(1), found.captured(1));
    }
    return limits;
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

TEST(ProtocolDocument, HasTheTimeLimitOfEachCommand)
{
    const QString page = readPage();
    const QString others = QStringLiteral("30 s");
    EXPECT_TRUE(page.contains("\n| " + others + " | all others |\n"));
    QHash<QString, QString> limits = limitsOfCommands(page);
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue()) {
        const QString limit = limits.contains(entry.name) ? limits.take(entry.name) : others;
        EXPECT_EQ(limit.toStdString(), tarn::durationText(entry.timeout).toStdString()) << entry.name.data();
    }
    EXPECT_TRUE(limits.isEmpty()) << "no commands: " << limits.keys().join(' ').toStdString();
}

TEST(ProtocolDocument, HasEachNotification)
{
    const QString section = readPage().section("\n## Notifications\n", 1).section("\n## ", 0, 0);
    static const QRegularExpression cell("^\\| (`.*?) \\|", QRegularExpression::MultilineOption);
    QStringList listed;
    for (auto row = cell.globalMatch(section); row.hasNext();)
        listed << row.next().captured(1).remove('`').split(", ");
    listed.removeAll("cmd"); // the head of the table
    QStringList known;
    for (const QLatin1StringView name : tarn::notificationNames())
        known << name;
    listed.sort();
    known.sort();
    EXPECT_EQ(listed, known);
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
