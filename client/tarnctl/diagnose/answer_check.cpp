#include "answer_check.h"

#include "client/tarnctl/connect_failure.h"

#include <tarn/client.h>

#include <QEventLoop>

namespace tarnctl {

namespace {

// The service answers the first question without the EC, and the second one only with it.
struct Question
{
    QString subject;
    QString command;
    QString whatToDo; // when there is no answer
};

const Question questions[] = {
    {QStringLiteral("answers"), QStringLiteral("getAccessoryType"),
        QStringLiteral("look at the last lines of the log; another client may have taken the answer")},
    {QStringLiteral("EC"), QStringLiteral("getAccessoryCode"),
        QStringLiteral("look whether an update runs or has just ended; ") + advice::seeOperations},
};

class Interview
{
public:
    Interview(const Case &diagnosed, std::chrono::milliseconds longest)
        : examined(diagnosed)
        , limit(longest)
        , client(diagnosed.pipeName)
    { }

    [[nodiscard]] Findings findings()
    {
        QObject::connect(&client, &tarn::Client::connectingFailed, &loop, [this] { end(notConnected()); });
        client.open();
        for (const Question &question : questions) {
            if (!found.isEmpty() && found.last().verdict != Verdict::Good)
                break;
            ask(question);
        }
        return found;
    }

private:
    void ask(const Question &question)
    {
        isEnded = false;
        client.send(question.command, {}, limit).then(&loop, [this, question](const tarn::Reply &reply) {
            end(findingOf(question, reply));
        });
        if (!isEnded)
            loop.exec();
    }

    [[nodiscard]] static Finding findingOf(const Question &question, const tarn::Reply &reply)
    {
        if (!reply.isAnswered())
            return {Verdict::Bad, question.subject, reply.reason(), question.whatToDo};
        if (reply.value().isEmpty())
            return {Verdict::Bad, question.subject, QStringLiteral("it does not answer"), question.whatToDo};
        return {
            Verdict::Good, question.subject, QStringLiteral("%1: %2").arg(question.command, reply.value())};
    }

    [[nodiscard]] Finding notConnected() const
    {
        const QString text = connectFailureText(examined.pipeName, client.problem(), client.problemText());
        const auto seconds = examined.secondsSinceStart();
        const bool isStarting = seconds && *seconds <= longestUntilPipeSeconds;
        return {isStarting ? Verdict::Unknown : Verdict::Bad, questions[0].subject, text.section(u'\n', 0, 0),
            isStarting ? QStringLiteral("look again in ten seconds")
                       : QStringLiteral("see the lines about the service and the pipe above")};
    }

    // The first call for a question counts: either the connection fails, or the request ends in its limit.
    void end(const Finding &finding)
    {
        if (isEnded)
            return;
        isEnded = true;
        found << finding;
        loop.quit();
    }

    const Case &examined;
    const std::chrono::milliseconds limit;
    tarn::Client client;
    QEventLoop loop;
    Findings found;
    bool isEnded = false;
};

} // namespace

Findings checkAnswer(const Case &examined, std::chrono::milliseconds limit)
{
    return Interview(examined, limit).findings();
}

} // namespace tarnctl
