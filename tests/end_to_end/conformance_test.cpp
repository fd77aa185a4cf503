#include "client/command_catalogue.h"
#include "end_to_end/dialogue_script.h"
#include "end_to_end/running_service.h"

#include <QFile>
#include <QJsonDocument>
#include <QSet>

using tarnTest::DialogueScript;

namespace {

// The conversations, each a file of its own in the folder beside this one.
const char *const dialogueNames[] = {"accessory", "device_settings", "dock", "external_gpu", "firmware",
    "graphics_light", "kvane", "not_understood", "power_control", "power_profiles", "unreadable_registers"};

QStringList dialogueLines(const QString &name)
{
    const QString given = qEnvironmentVariable("TARN_DIALOGUES_FOLDER");
    const QString folder = given.isEmpty() ? QStringLiteral(TARN_DIALOGUES_FOLDER) : given;
    QFile file(folder + QLatin1Char('/') + name + QStringLiteral(".txt"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
}

} // namespace

// No command is left out.
TEST(ConformanceDialogues, AskForEveryCommand)
{
    const QString answerMark = "<- ";
    QSet<QString> answered;
    for (const char *name : dialogueNames) {
        QString previous;
        for (const QString &line : dialogueLines(QString::fromUtf8(name))) {
            if (previous.startsWith("->") && line.startsWith(answerMark)) {
                const QByteArray answer = line.sliced(answerMark.size()).toUtf8();
                answered += QJsonDocument::fromJson(answer).object().value("cmd").toString();
            }
            previous = line;
        }
    }
    QSet<QString> commands;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue())
        commands += QString(command.name);
    EXPECT_EQ(answered, commands);
}

// Every command with all that it takes and refuses, and every notification: nothing else may arrive, and
// nothing else may be written to the EC.
class Conformance : public tarnTest::RunningService, public ::testing::WithParamInterface<const char *>
{
protected:
    void SetUp() override
    {
        RunningService::SetUp();
        // The last that the service does with the EC by itself.
        ASSERT_TRUE(service.waitForLog("wait eep_status"));
    }

    void follow()
    {
        const QStringList lines = dialogueLines(QString::fromUtf8(GetParam()));
        ASSERT_GT(lines.filter(QStringLiteral("<-")).size(), 4);
        DialogueScript(service, client, DialogueScript::Others::Fail).follow(lines);
    }
};

TEST_P(Conformance, OfTheWholeDialogue)
{
    follow();
}

INSTANTIATE_TEST_SUITE_P(Protocol, Conformance, ::testing::ValuesIn(dialogueNames),
    [](const auto &dialogue) { return std::string(dialogue.param); });

// The same with an EC that keeps the host waiting at each byte.
class ConformanceOnASlowEc : public Conformance
{
protected:
    void SetUp() override
    {
        service.takeBytesSlowly();
        Conformance::SetUp();
    }
};

TEST_P(ConformanceOnASlowEc, OfTheWholeDialogue)
{
    follow();
}

INSTANTIATE_TEST_SUITE_P(Protocol, ConformanceOnASlowEc,
    ::testing::Values("device_settings", "dock", "external_gpu", "kvane"),
    [](const auto &dialogue) { return std::string(dialogue.param); });
