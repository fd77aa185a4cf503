#include "client/tarnctl/diagnose/diagnosis.h"

#include "support/printing.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"

#include <stdexcept>

using namespace tarnctl;
using tarnClientTest::Diagnosis;

TEST_F(Diagnosis, FindsNothingBadOnASoundComputer)
{
    const Findings findings = findingsOf(allChecks(), examined());
    QStringList subjects;
    for (const Finding &finding : findings) {
        EXPECT_EQ(finding.verdict, Verdict::Good)
            << finding.subject.toStdString() << ": " << finding.text.toStdString();
        EXPECT_EQ(finding.advice, QString());
        subjects << finding.subject;
    }
    EXPECT_FALSE(isAnyBad(findings));
    EXPECT_EQ(subjects,
        QStringList({"installation", "registered", "start type", "account", "recovery", "running",
            "pipe tarnPipe", "may connect", "version", "running EC tool", "running flasher", "port library",
            "GUI program", "flasher", "EC tool", "EC tool settings", "download folder", "saved profile",
            "saved colour", "free disk", "log", "last warnings"}));
}

TEST_F(Diagnosis, IsATableWithTheAdviceBelow)
{
    EXPECT_EQ(tableOf({{Verdict::Good, "account", "LocalSystem"},
                  {Verdict::Bad, "start type", "disabled", "enable it"},
                  {Verdict::Unknown, "recovery", "the system does not tell"}}),
        "good     account            LocalSystem\n"
        "bad      start type         disabled\n"
        "                            -> enable it\n"
        "unknown  recovery           the system does not tell");
}

TEST_F(Diagnosis, OutlivesALookThatFails)
{
    const QList<Check> checks {
        {"first",
            [](const Case &) -> Findings {
                throw std::runtime_error("too large");
            }},
        {"second",
            [](const Case &) {
                return Findings {{Verdict::Good, "second", "seen"}};
            }},
    };
    const Findings expected {
        {Verdict::Unknown, "first", "it cannot be looked at: too large"}, {Verdict::Good, "second", "seen"}};
    EXPECT_TRUE(findingsOf(checks, examined()) == expected);
}
