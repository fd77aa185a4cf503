#include "end_to_end/dialogue_script.h"

#include "simulator/register_log.h"
#include "simulator/tool/run_tool.h"
#include "support/printing.h"
#include "support/seen_texts.h"

#include <QDir>
#include <QTextStream>

#include <gtest/gtest.h>

namespace tarnTest {
namespace {

constexpr int dialogueTimeoutMs = 30000;
constexpr int writeTimeoutMs = 5000;

const QString changeWord = QStringLiteral("tarnsim");
const QString requestWord = QStringLiteral("->");

// What the monitor writes in its cycles, whatever the client does: it takes the box's event, and asks for the
// light of the KVane.
const QStringList monitorWrites {"04A4=00", "04B0=15"};

// An answer of no bytes leaves a line of its own in the log.
const QString emptyAnswerLine = QStringLiteral("send");

} // namespace

DialogueScript::DialogueScript(ServiceProcess &tested, ServiceClient &peer, Others otherMessages)
    : service(tested)
    , client(peer)
    , others(otherMessages)
{ }

void DialogueScript::follow(const QStringList &lines)
{
    int number = 0;
    for (const QString &line : lines) {
        ++number;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        SCOPED_TRACE(QStringLiteral("line %1: %2").arg(number).arg(line).toStdString());
        const QString word = line.section(QLatin1Char(' '), 0, 0);
        if (!followLine(word, line.section(QLatin1Char(' '), 1)))
            return;
        previousWord = word;
    }
    if (others == Others::Fail) {
        EXPECT_EQ(client.documents().mid(seen), QByteArrayList());
    }
}

bool DialogueScript::followLine(const QString &word, const QString &rest)
{
    if (word == changeWord)
        return change(rest);
    if (word == QStringLiteral("download"))
        return download(rest);
    if (word == requestWord)
        return request(rest);
    if (word == QStringLiteral("<-"))
        return rest.isEmpty() ? expectEmptyAnswer() : expectMessage(rest.toUtf8());
    if (word == QStringLiteral("writes"))
        return expectWrites(rest);
    if (word == QStringLiteral("await"))
        return awaitLog(rest);
    ADD_FAILURE() << "not a line of a conversation";
    return false;
}

bool DialogueScript::change(const QString &words)
{
    if (previousWord != changeWord)
        beginStep();
    const QStringList arguments =
        QStringList {"tarnsim", "--state", service.path("function/simulated_computer.state")}
        + words.split(QLatin1Char(' '));
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    EXPECT_EQ(tarnSimulator::runTool(arguments, outStream, errStream), 0) << err.toStdString();
    return err.isEmpty();
}

bool DialogueScript::download(const QString &name)
{
    QFile file(QDir(service.downloads()).filePath(name));
    const bool written = file.open(QIODevice::WriteOnly) && file.write("firmware") > 0;
    EXPECT_TRUE(written);
    return written;
}

bool DialogueScript::request(const QString &bytes)
{
    beginStep();
    client.write(bytes.toUtf8());
    return true;
}

bool DialogueScript::expectMessage(const QByteArray &message)
{
    qsizetype at = seen;
    const auto hasCome = [&] {
        if (others == Others::AreSkipped) {
            at = client.documents().indexOf(message, seen);
            return at >= 0;
        }
        return client.documents().size() > seen;
    };
    if (!client.waitConnected(hasCome, dialogueTimeoutMs)) {
        ADD_FAILURE() << "it does not come; after: " << client.documents().mid(seen).join('\n').toStdString();
        return false;
    }
    EXPECT_EQ(client.documents().at(at), message);
    noteSeen(previousWord == requestWord ? "reply" : "notification", QString::fromUtf8(message));
    const bool equal = client.documents().at(at) == message;
    seen = at + 1;
    return equal;
}

bool DialogueScript::expectEmptyAnswer()
{
    const bool has = client.waitConnected(
        [this] { return service.logLines().count(emptyAnswerLine) > emptyAnswers; }, dialogueTimeoutMs);
    EXPECT_TRUE(has) << "no empty answer";
    return has;
}

// The EC takes a byte a moment after the service has written it.
bool DialogueScript::expectWrites(const QString &expected)
{
    (void)client.waitConnected([&] { return writesSinceMark().size() >= expected.size(); }, writeTimeoutMs);
    EXPECT_EQ(writesSinceMark().toStdString(), expected.toStdString());
    return true;
}

QString DialogueScript::writesSinceMark()
{
    QStringList writes;
    for (const auto &access :
        tarnSimulator::RegisterLog(service.state().log).readAfter(registerMark).accesses) {
        if (access.kind != tarnSimulator::AccessKind::Write)
            continue;
        const QString text = QStringLiteral("%1=%2")
                                 .arg(access.address, 4, 16, QLatin1Char('0'))
                                 .arg(access.value, 2, 16, QLatin1Char('0'))
                                 .toUpper();
        if (!monitorWrites.contains(text))
            writes << text;
    }
    return writes.join(QLatin1Char(' '));
}

bool DialogueScript::awaitLog(const QString &text)
{
    const bool said =
        client.waitConnected([&] { return service.log().mid(logMark).contains(text); }, dialogueTimeoutMs);
    EXPECT_TRUE(said) << "the log does not say it";
    return said;
}

void DialogueScript::beginStep()
{
    const QString log = service.log();
    logMark = log.size();
    emptyAnswers = log.split(QLatin1Char('\n')).count(emptyAnswerLine);
    registerMark = tarnSimulator::RegisterLog(service.state().log).end();
}

} // namespace tarnTest
