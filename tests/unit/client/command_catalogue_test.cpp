#include "accessory/power_profiles.h"
#include "client/tarnctl/command_check.h"
#include "client/tarnctl/help_text.h"
#include "device/monitor/accessory_table.h"
#include "unit/client/tarnctl/tool_run.h"

#include <gtest/gtest.h>

using namespace tarnClientTest;
using tarn::commandCatalogue;
using tarn::CommandEntry;
using tarn::DataKind;

namespace {

QString fromRow(QLatin1StringView text)
{
    return text.toString();
}

} // namespace

TEST(TarnctlCatalogueTest, IsListedByTheTool)
{
    QStringList expected;
    for (const CommandEntry &entry : commandCatalogue())
        expected << fromRow(entry.name);
    EXPECT_EQ(tarnctl::commandNames().split('\n'), expected);
    const ToolRun run = runTool({"commands"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, expected.join('\n').toUtf8() + '\n');
}

TEST(TarnctlCatalogueTest, EveryRowIsConsistent)
{
    for (const CommandEntry &entry : commandCatalogue()) {
        SCOPED_TRACE(fromRow(entry.name).toStdString());
        EXPECT_FALSE(entry.summary.isEmpty() || entry.concerns.isEmpty() || entry.answerMeaning.isEmpty());
        EXPECT_GE(entry.timeout, std::chrono::seconds(5));
        EXPECT_EQ(entry.data.kind == DataKind::Choice, !entry.data.choices.isEmpty());
        EXPECT_TRUE(entry.outcomeKey.isEmpty() || entry.answerKeys.contains(entry.outcomeKey));
        EXPECT_TRUE(entry.unansweredData.isEmpty() || entry.data.choices.contains(entry.unansweredData));
        // The example is a command line that the tool accepts.
        const QString example = fromRow(entry.example);
        ASSERT_TRUE(example.startsWith("tarnctl " + fromRow(entry.name)));
        const auto objection =
            tarnctl::commandObjection(tarnctl::parseTypedLine(example.mid(qsizetype(qstrlen("tarnctl ")))));
        EXPECT_FALSE(objection.has_value()) << objection.value_or(QString()).toStdString();
    }
}

TEST(TarnctlCatalogueTest, OutcomeKeysFollowTheKindOfCommand)
{
    // The firmware commands answer their outcome in "data", the other actions in "result", queries have none.
    for (const CommandEntry &entry : commandCatalogue()) {
        SCOPED_TRACE(fromRow(entry.name).toStdString());
        if (entry.answerKeys.contains(QLatin1StringView("result"))) {
            EXPECT_EQ(entry.outcomeKey, QLatin1StringView("result"));
        }
        const bool isQuery = entry.name.startsWith(QLatin1StringView("get"))
            && entry.name != QLatin1StringView("getSmartChargingStatus");
        if (isQuery) {
            EXPECT_TRUE(entry.outcomeKey.isEmpty());
        }
    }
    for (const char *name : {"requestMcuUpdate", "requestEnterMcuUpdateMode", "requestStartEcUpdate",
             "requestEcUpdate", "getSmartChargingStatus"}) {
        EXPECT_EQ(tarn::findCommand(name)->outcomeKey, QLatin1StringView("data")) << name;
    }
}

// The tool's rows are its own; here they are compared with the tables of the service.
TEST(TarnctlCatalogueTest, KnowsTheProfilesOfTheService)
{
    QList<QLatin1StringView> names;
    QStringList numbered;
    for (const auto &profile : tarnAccessoryManager::powerProfiles) {
        names << QLatin1StringView(profile.name);
        numbered << QString("%1 %2").arg(profile.number).arg(profile.name);
    }
    EXPECT_EQ(tarn::findCommand("setTarnPowerMode")->data.choices, names);
    const CommandEntry &control = *tarn::findCommand("powerModeControl");
    EXPECT_EQ(control.data.choices, QList({QLatin1StringView("first"), QLatin1StringView("last")}) + names);
    EXPECT_TRUE(fromRow(control.answerMeaning).contains(numbered.join(", ")));
    const QString meaning = fromRow(tarn::findCommand("getTarnPowerMode")->answerMeaning);
    for (const QLatin1StringView &name :
        names + QList({QLatin1StringView(tarnAccessoryManager::noProfileName)}))
        EXPECT_TRUE(meaning.contains(name)) << name.data();
}

TEST(TarnctlCatalogueTest, KnowsTheAccessoriesOfTheService)
{
    const QString types = fromRow(tarn::findCommand("getAccessoryType")->answerMeaning);
    const QString codes = fromRow(tarn::findCommand("getAccessoryCode")->answerMeaning);
    EXPECT_TRUE(types.contains(tarnDeviceInfos::noAccessoryName));
    for (const auto &kind : tarnDeviceInfos::accessoryTable) {
        EXPECT_TRUE(types.contains(kind.name)) << kind.name;
        EXPECT_TRUE(codes.contains(QString::number(kind.code))) << kind.name;
    }
}

TEST(TarnctlHelpTest, ExplainsEveryCommand)
{
    for (const CommandEntry &entry : commandCatalogue()) {
        SCOPED_TRACE(fromRow(entry.name).toStdString());
        const ToolRun run = runTool({"help", fromRow(entry.name)});
        EXPECT_EQ(run.code, 0);
        EXPECT_TRUE(run.errors.isEmpty());
        EXPECT_TRUE(run.output.startsWith("tarnctl " + fromRow(entry.name).toUtf8()));
        for (const QString &part : {fromRow(entry.summary), fromRow(entry.concerns),
                 fromRow(entry.answerMeaning), fromRow(entry.example), entry.data.description()}) {
            EXPECT_TRUE(run.output.contains(part.toUtf8())) << part.toStdString();
        }
        EXPECT_EQ(runTool({fromRow(entry.name), "--help"}).output, run.output);
    }
}

TEST(TarnctlHelpTest, ExplainsTheToolsOwnWords)
{
    for (const char *word : {"watch", "raw", "help", "commands", "update-mcu", "update-ec"}) {
        const ToolRun run = runTool({"help", word});
        EXPECT_EQ(run.code, 0) << word;
        EXPECT_TRUE(run.output.startsWith(QByteArray("tarnctl ") + word)) << word;
    }
    for (const char *line : {"\n  watch ", "\n  raw ", "\n  update-mcu ", "\n  update-ec "})
        EXPECT_TRUE(runTool({"help"}).output.contains(line)) << line;
    const ToolRun general = runTool({"help"});
    EXPECT_EQ(general.code, 0);
    EXPECT_TRUE(general.output.startsWith("Usage: tarnctl"));
    EXPECT_EQ(runTool({"-h"}).output, general.output);
    for (const CommandEntry &entry : commandCatalogue())
        EXPECT_TRUE(general.output.contains(fromRow(entry.name).toUtf8()));
}

TEST(TarnctlHelpTest, UnknownTopicIsAUsageError)
{
    const ToolRun run = runTool({"help", "setDokLedStatus"});
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.errors.contains("setDockLedStatus"));
}

namespace {

struct SuggestionCase
{
    const char *typed;
    const char *nearest;
};

// The name that a report shows.
void PrintTo(const SuggestionCase &value, std::ostream *out)
{
    *out << '"' << value.typed << '"';
}

class TarnctlSuggestions : public ::testing::TestWithParam<SuggestionCase>
{ };

} // namespace

TEST_P(TarnctlSuggestions, NamesWhatWasMeant)
{
    const QStringList near = tarnctl::nearestCommands(GetParam().typed);
    EXPECT_LE(near.size(), 3);
    EXPECT_EQ(near.value(0), QString(GetParam().nearest));
}

INSTANTIATE_TEST_SUITE_P(Slips, TarnctlSuggestions,
    ::testing::Values(SuggestionCase {"getmcuversion", "getMcuVersion"},
        SuggestionCase {"getMcuVersoin", "getMcuVersion"},
        SuggestionCase {"setDokLedStatus", "setDockLedStatus"},
        SuggestionCase {"tarnpowermode", "getTarnPowerMode"},
        SuggestionCase {"Kvanesn", "getTarnKvaneSnCode"}, SuggestionCase {"zzzzzz", ""},
        SuggestionCase {"", ""}));
