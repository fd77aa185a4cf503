#pragma once

#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"

namespace tarnTest {

// A conversation with a service, written down. Each line is empty, a comment after "#", or one of
//   tarnsim WORDS       changes the machine
//   download NAME       puts a file of this name into the download folder
//   -> BYTES            what the client writes
//   <- MESSAGE          what it reads next; nothing after the arrow is an empty answer
//   writes 04B1=01 ...  all that the EC has been told since the last change or request
//   await TEXT          waits until the log has said so since then
class DialogueScript
{
public:
    // What becomes of a message that comes before the one that is next.
    enum class Others { AreSkipped, Fail };

    DialogueScript(ServiceProcess &service, ServiceClient &client, Others others);

    // Follows the lines; ends at the first that the service does not follow.
    void follow(const QStringList &lines);

private:
    bool followLine(const QString &word, const QString &rest);
    bool change(const QString &words);
    bool download(const QString &name);
    bool request(const QString &bytes);
    bool expectMessage(const QByteArray &message);
    bool expectEmptyAnswer();
    bool expectWrites(const QString &expected);
    [[nodiscard]] QString writesSinceMark();
    bool awaitLog(const QString &text);
    void beginStep();

    ServiceProcess &service;
    ServiceClient &client;
    const Others others;
    QString previousWord;
    qsizetype seen = 0; // messages
    qsizetype emptyAnswers = 0;
    qsizetype logMark = 0;
    std::uint64_t registerMark = 0;
};

} // namespace tarnTest
