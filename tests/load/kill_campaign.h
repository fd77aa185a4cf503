#pragma once

#include "campaign/random_source.h"
#include "end_to_end/service_client.h"
#include "load/kept_settings.h"

#include <QElapsedTimer>

#include <memory>

namespace tarnLoad {

// Runs (lives) of a service that all end by SIGKILL, at points that the seed chooses: during its start, at a
// register access, between two calls for a file, or some time after a request. After each, what was confirmed
// has to be kept, what was under way may be, and the next life has to work.
class KillCampaign
{
public:
    KillCampaign(std::uint64_t seed, int kills);

    // The broken rule with the number of the kill and the last steps; empty when none was.
    [[nodiscard]] QString run();

    [[nodiscard]] int killsDone() const { return done; }
    [[nodiscard]] int killsInFileWork() const { return inFileWork; }
    [[nodiscard]] int confirmedRequests() const { return confirmed; }
    [[nodiscard]] int unconfirmedRequests() const { return unconfirmed; }

private:
    struct Wish
    {
        const char *command;
        QString value;
    };
    enum class Outcome { Confirmed, Refused, Open };

    void live();
    void dieAtTheStart();
    void begin(); // with everything that has to work then
    void checkWhatIsKept();
    void checkClientsStart();
    void checkAnswers();
    void checkMonitor();
    void dieInTheMiddle();

    [[nodiscard]] Wish throwWish(bool last, bool inFile = false);
    void set(const Wish &wish);
    void allow(const Wish &wish);
    void confirm(const Wish &wish);
    // Writes the request and waits for its reply, the end of the process or what else is named; the last two
    // leave it open.
    [[nodiscard]] Outcome request(
        const char *command, const QString &value, const std::function<bool()> &orUntil = {});
    [[nodiscard]] QString query(const char *command);
    void kill();

    void note(const QString &step);
    void expect(bool holds, const QString &rule);

    tarnCampaign::RandomSource random;
    const int kills;
    tarnTest::ServiceProcess service;
    std::unique_ptr<tarnTest::ServiceClient> client;
    std::vector<QStringList> allowed; // for each setting, what may be found
    QString accessory;
    QJsonObject reply;
    QStringList steps;
    QString broken;
    bool offered = false; // firmware files, to every life
    int mark = 0;
    int done = 0;
    int inFileWork = 0;
    int confirmed = 0;
    int unconfirmed = 0;
};

} // namespace tarnLoad
