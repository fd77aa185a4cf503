#pragma once

#include "client/client_times.h"
#include "support/pipe_peer.h"
#include "unit/client/fake_service.h"

#include "tarn/client.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QStringList>

namespace tarnClientTest {

// Long enough for a busy computer; what is waited for comes much sooner.
inline constexpr int patienceMs = 20000;

// The client's waiting times, a hundredth of the real ones where tests wait for them.
[[nodiscard]] inline tarn::ClientTimes shortTimes()
{
    using std::chrono::milliseconds;
    tarn::ClientTimes times;
    times.firstRetry = milliseconds(20);
    times.longestRetry = milliseconds(100);
    times.leavePause = milliseconds(20);
    times.takenOverPause = milliseconds(600);
    times.connectionWait = milliseconds(300);
    times.quietTime = milliseconds(patienceMs);
    times.secondLook = milliseconds(100);
    times.questionLimit = milliseconds(3000);
    times.unansweredPause = milliseconds(60);
    return times;
}

// The same for a client that looks for silence often.
[[nodiscard]] inline tarn::ClientTimes watchfulTimes()
{
    tarn::ClientTimes times = shortTimes();
    times.quietTime = std::chrono::milliseconds(300);
    times.questionLimit = std::chrono::milliseconds(600);
    return times;
}

// A client of a fake service. It is not open yet.
class ClientTest : public ::testing::Test
{
protected:
    explicit ClientTest(const tarn::ClientTimes &times = shortTimes())
        : client(service.pipeName(), times)
    {
        QObject::connect(&client, &tarn::Client::stateChanged, &service,
            [this](tarn::Client::State state) { states << state; });
        states.clear();
    }

    // Until both ends know of the connection.
    void openAndConnect()
    {
        const int before = service.connections();
        client.open();
        ASSERT_TRUE(becomes(tarn::Client::State::Connected));
        ASSERT_TRUE(
            tarnTest::waitUntil([this, before] { return service.connections() > before; }, patienceMs));
    }

    [[nodiscard]] bool becomes(tarn::Client::State state)
    {
        return tarnTest::waitUntil([this, state] { return client.state() == state; }, patienceMs);
    }

    template <typename T> [[nodiscard]] static T endOf(const QFuture<T> &future)
    {
        EXPECT_TRUE(tarnTest::waitUntil([&future] { return future.isFinished(); }, patienceMs));
        EXPECT_EQ(future.resultCount(), 1);
        return future.resultCount() == 1 ? future.result() : T();
    }

    // Answers every request like the service: with "data", or with "result" to what sets something.
    void answerAll(const QString &value)
    {
        service.onRequest([this, value](const QJsonObject &request) {
            const bool sets = request.value("cmd").toString().startsWith("set")
                || request.value("cmd") == "powerModeControl";
            service.answer(request, sets ? "result" : "data", value);
        });
    }

    FakeService service;
    tarn::Client client;
    QList<tarn::Client::State> states;
};

} // namespace tarnClientTest
