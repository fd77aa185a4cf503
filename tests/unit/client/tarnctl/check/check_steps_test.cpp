#include "client/tarnctl/check/check_step.h"

#include "client/command_catalogue.h"
#include "client/tarnctl/command_check.h"

#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

using namespace tarnctl;

namespace {

using ItemKind = CheckItem::Kind;

bool isSent(const CheckItem &item)
{
    return item.kind == ItemKind::Ask || item.kind == ItemKind::Remember
        || item.kind == ItemKind::RememberSettled || item.kind == ItemKind::Repeat
        || item.kind == ItemKind::PutBack;
}

bool isChange(const CheckItem &item)
{
    return item.kind == ItemKind::Ask
        && (item.command.startsWith(QLatin1StringView("set"))
            || item.command == QLatin1StringView("powerModeControl"));
}

} // namespace

TEST(CheckStepsTest, NeverTouchFirmware)
{
    for (const CheckStep &step : checkSteps()) {
        for (const CheckItem &item : step.items)
            EXPECT_FALSE(item.command.startsWith(QLatin1StringView("request"))) << item.command.data();
    }
}

TEST(CheckStepsTest, SendWhatTheServiceTakes)
{
    for (const CheckStep &step : checkSteps()) {
        for (const CheckItem &item : step.items) {
            if (!isSent(item))
                continue;
            const bool hasOwnData = item.kind != ItemKind::PutBack || !item.data.isEmpty();
            TypedCommand command {item.command.toString()};
            if (!item.data.isEmpty())
                command.data = item.data.toString();
            const auto objection = commandObjection(command);
            EXPECT_TRUE(!hasOwnData || !objection) << objection.value_or(QString()).toStdString();
            EXPECT_NE(tarn::findCommand(item.command), nullptr) << item.command.data();
        }
    }
}

TEST(CheckStepsTest, ExpectWhatCanBeRead)
{
    QSet<QString> names;
    for (const CheckStep &step : checkSteps()) {
        EXPECT_FALSE(names.contains(step.name.toString())) << step.name.data();
        names << step.name.toString();
        for (const CheckItem &item : step.items) {
            EXPECT_TRUE(QRegularExpression(item.expected.toString()).isValid()) << item.expected.data();
            EXPECT_FALSE(item.text.isEmpty()) << step.name.data();
        }
    }
}

TEST(CheckStepsTest, AskBeforeTheyChangeAndPutBackAtTheEnd)
{
    for (const CheckStep &step : readingSteps()) {
        for (const CheckItem &item : step.items)
            EXPECT_EQ(item.kind, ItemKind::Ask);
        EXPECT_EQ(std::count_if(step.items.begin(), step.items.end(), isChange), 0) << step.name.data();
    }
    for (const CheckStep &step : changingSteps()) {
        bool isRemembered = false;
        QString changed;
        bool isPutBack = true;
        for (const CheckItem &item : step.items) {
            isRemembered =
                isRemembered || item.kind == ItemKind::Remember || item.kind == ItemKind::RememberSettled;
            if (isChange(item)) {
                EXPECT_TRUE(isRemembered) << step.name.data();
                changed = item.command;
                isPutBack = false;
            } else if (item.kind == ItemKind::PutBack) {
                isPutBack = item.command == changed;
            }
        }
        EXPECT_TRUE(isPutBack) << step.name.data();
        EXPECT_FALSE(changed.isEmpty()) << step.name.data();
    }
}

TEST(CheckStepsTest, ReadBackWhatTheyPutBack)
{
    for (const CheckStep &step : changingSteps()) {
        for (const CheckItem &item : step.items) {
            // Nobody can ask whether power control has been given back.
            if (item.kind != ItemKind::PutBack || item.data == QLatin1StringView("last"))
                continue;
            EXPECT_NE(tarn::findCommand(item.readBack), nullptr) << step.name.data();
            EXPECT_EQ(item.readBack, step.items.at(step.name == QLatin1StringView("power-profiles")).command)
                << step.name.data();
        }
    }
}

TEST(CheckStepsTest, BeginWithABoxThatIsAttachedAndPlugItInAtTheEnd)
{
    QList<CheckStep> steps = checkSteps();
    const qsizetype others = readingSteps().size() + changingSteps().size();
    beginWithTheBox(steps);
    QStringList names;
    for (const CheckStep &step : steps.mid(others))
        names << step.name.toString();
    EXPECT_EQ(names,
        QStringList({"press-gpu-key", "unplug-graphics", "plug-dock", "unplug-dock", "plug-kvane",
            "unplug-kvane", "plug-graphics"}));
    for (qsizetype number = 0; number < others; ++number)
        EXPECT_EQ(steps.at(number).name, checkSteps().at(number).name);
}

TEST(CheckStepsTest, PutProfilesBackByTheirNames)
{
    const QLatin1StringView control("powerModeControl");
    EXPECT_EQ(wordToPutBack(control, "0"), QString("high"));
    EXPECT_EQ(wordToPutBack(control, "1"), QString("balance"));
    EXPECT_EQ(wordToPutBack(control, "2"), QString("low"));
    EXPECT_EQ(wordToPutBack(QLatin1StringView("setKVaneLedLight"), "2"), QString("2"));
}
