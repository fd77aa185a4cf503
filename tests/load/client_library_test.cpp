// An application's client on bad days.
#include "client/client_times.h"
#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "load/load_scale.h"
#include "support/pipe_peer.h"

#include "tarn/client.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <vector>

using namespace tarn;
using tarnTest::ServiceClient;
using tarnTest::ServiceProcess;
using tarnTest::waitUntil;

namespace {

constexpr int patienceMs = 120000;

// Keeps asking, and compares each answer with its request.
class Asker
{
public:
    explicit Asker(Client &asked)
        : client(asked)
    { }

    void begin()
    {
        isAsking = true;
        ask();
    }

    [[nodiscard]] bool isAnsweredAgain(int times = 1) const
    {
        const int before = answered;
        return waitUntil([&] { return answered >= before + times; }, patienceMs);
    }

    // True when the last request has ended, too.
    [[nodiscard]] bool end()
    {
        isAsking = false;
        return waitUntil([this] { return ended == begun; }, patienceMs);
    }

    int begun = 0;
    int ended = 0;
    int answered = 0;
    // Answers that were not to their request.
    int wrong = 0;

private:
    // The service sends this request back as it came, whatever is attached.
    void ask()
    {
        if (!isAsking)
            return;
        const QString light = QString::number(++begun % 256);
        client.send(QStringLiteral("setKVaneLedLight"), light)
            .then(&client, [this, light](const Reply &reply) {
                ++ended;
                if (reply.isAnswered()) {
                    ++answered;
                    wrong += reply.answer().value("data").toString() == light ? 0 : 1;
                }
                // A reply without a connection comes at once.
                QTimer::singleShot(reply.wasSent() ? 0 : 100, &client, [this] { ask(); });
            });
    }

    Client &client;
    bool isAsking = false;
};

// With nobody in the way.
void expectWellAtTheEnd(ServiceProcess &service, const Client &client, Asker &asker)
{
    EXPECT_TRUE(asker.isAnsweredAgain());
    EXPECT_EQ(client.state(), Client::State::Connected);
    EXPECT_TRUE(asker.end());
    EXPECT_EQ(asker.wrong, 0);
    EXPECT_EQ(service.stop(), 0);
}

} // namespace

TEST(ClientLibrary, ComesBackAfterEveryKillWhileItKeepsAsking)
{
    ServiceProcess service;
    Client client;
    Asker asker(client);
    client.open();
    asker.begin();
    const int restarts = tarnLoad::scaled(2, 20);
    for (int i = 0; i < restarts; ++i) {
        ASSERT_TRUE(service.start());
        ASSERT_TRUE(asker.isAnsweredAgain(3)) << "after start " << i;
        service.kill();
    }
    ASSERT_TRUE(service.start());
    expectWellAtTheEnd(service, client, asker);
}

TEST(ClientLibrary, LivesBesideAClientThatComesAndGoesEverySecond)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    Client client;
    Asker asker(client);
    client.open();
    asker.begin();
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < tarnLoad::scaled(5000, 60000)) {
        ServiceClient other;
        ASSERT_TRUE(other.connectToService());
        waitUntil([] { return false; }, 500);
        other.leave();
        waitUntil([] { return false; }, 500);
    }
    // The other one stays away now.
    expectWellAtTheEnd(service, client, asker);
}

TEST(ClientLibrary, TwoOfThemDoNotSilenceEachOtherForEver)
{
    ServiceProcess service;
    ASSERT_TRUE(service.start());
    ClientTimes times;
    times.quietTime = std::chrono::milliseconds(2000);
    times.questionLimit = std::chrono::milliseconds(3000);
    int lost = 0;
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < 2; ++i) {
        clients.push_back(std::make_unique<Client>(QStringLiteral("tarnPipe"), times));
        QObject::connect(clients.back().get(), &Client::stateChanged, clients.back().get(),
            [&lost](Client::State state) { lost += state == Client::State::Connected ? 0 : 1; });
        clients.back()->open();
    }
    const auto areConnected = [&clients] {
        return std::all_of(clients.begin(), clients.end(),
            [](const auto &client) { return client->state() == Client::State::Connected; });
    };
    ASSERT_TRUE(waitUntil(areConnected, patienceMs));
    lost = 0;
    {
        ServiceClient third; // its end is what silences both
        ASSERT_TRUE(third.connectToService());
        third.leave();
    }
    ASSERT_TRUE(waitUntil([&lost] { return lost > 0; }, patienceMs));
    // At the third loss a client gives way for a minute.
    waitUntil([] { return false; }, tarnLoad::scaled(10000, 40000));
    EXPECT_LE(lost, 2 * 3);
    EXPECT_EQ(service.stop(), 0);
}
