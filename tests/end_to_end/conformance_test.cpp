#include "end_to_end/dialogue_script.h"
#include "end_to_end/running_service.h"

#include <QFile>

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

// Every command with all that it takes and refuses, and every notification: nothing else may arrive, and
// nothing else may be written to the EC.
class Conformance : public tarnTest::RunningService, public ::testing::WithParamInterface<const char *>
{ };

TEST_P(Conformance, OfTheWholeDialogue)
{
    const QStringList lines = dialogueLines(QString::fromUtf8(GetParam()));
    ASSERT_GT(lines.filter(QStringLiteral("<-")).size(), 4);
    DialogueScript(service, client, DialogueScript::Others::Fail).follow(lines);
}

INSTANTIATE_TEST_SUITE_P(Protocol, Conformance, ::testing::ValuesIn(dialogueNames),
    [](const auto &dialogue) { return std::string(dialogue.param); });
