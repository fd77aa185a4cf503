#include "figures.h"
#include "pipe/outbox/send_queue_thread.h"
#include "pipe/tarn_pipe_server.h"
#include "support/queued_messages.h"
#include "support/run_folder.h"
#include "support/virtual_clock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>

#include <atomic>
#include <memory>

using namespace tarnBench;
using tarnPipeServer::SendQueueThread;
using tarnPipeServer::TarnPipeServer;

namespace {

constexpr int timeoutMs = 10000;
const QByteArray request = R"({"cmd":"getAccessoryType"})"; // the handler needs no EC

QElapsedTimer sinceStart;
std::atomic<qint64> handlerEnteredNs {0};

// The dispatcher names the command in the log right before it enters the handler.
void watchLog(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text == QStringLiteral("\"getAccessoryType\""))
        handlerEnteredNs = sinceStart.nsecsElapsed();
}

qsizetype readSome(QLocalSocket &socket)
{
    if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(timeoutMs))
        qFatal("nothing arrives: %s", qPrintable(socket.errorString()));
    return socket.readAll().size();
}

struct Latency
{
    Figures toHandlerUs;
    Figures toReplyUs;
};

// One request at a time, as clients are told to.
Latency askRepeatedly(QLocalSocket &socket, int times)
{
    Latency latency;
    for (int round = 0; round < times; ++round) {
        const qint64 written = sinceStart.nsecsElapsed();
        socket.write(request);
        socket.flush();
        readSome(socket);
        latency.toReplyUs.add(static_cast<double>(sinceStart.nsecsElapsed() - written) / 1e3);
        latency.toHandlerUs.add(static_cast<double>(handlerEnteredNs - written) / 1e3);
    }
    return latency;
}

// Seconds until the client has read them all.
double sendMany(QLocalSocket &socket, int messages)
{
    const QString message = tarnTest::notification("getKvaneBatteryNum", QStringLiteral("42"));
    const qsizetype expected = message.size() * messages;
    const qint64 begun = sinceStart.nsecsElapsed();
    for (int count = 0; count < messages; ++count)
        SendQueueThread::instance()->enqueueMessage(message);
    for (qsizetype got = 0; got < expected;)
        got += readSome(socket);
    return static_cast<double>(sinceStart.nsecsElapsed() - begun) / 1e9;
}

double dispatchMany(int requests)
{
    const qint64 begun = sinceStart.nsecsElapsed();
    for (int count = 0; count < requests; ++count)
        TarnPipeServer::instance()->dispatch(request);
    return static_cast<double>(sinceStart.nsecsElapsed() - begun) / 1e9;
}

} // namespace

// What the pipe costs when the pause of 500 ms before each message takes no time: the clock of the tests
// stands in its place. Server, sender and client are threads of this process.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const bool isQuick = QCoreApplication::arguments().contains(QStringLiteral("--quick"));
    const int requests = isQuick ? 2000 : 20000;
    const int messages = isQuick ? 5000 : 50000;
    const tarnTest::RunFolder folder;
    tarnTest::VirtualClock clock;
    sinceStart.start();
    qInstallMessageHandler(watchLog);
    TarnPipeServer::instance();

    const std::unique_ptr<QThread> client(QThread::create([&] {
        QLocalSocket socket;
        socket.connectToServer(QStringLiteral("tarnPipe"));
        if (!socket.waitForConnected(timeoutMs))
            qFatal("no connection: %s", qPrintable(socket.errorString()));
        askRepeatedly(socket, 200); // until everything has been used once
        const Latency latency = askRepeatedly(socket, requests);
        const double sending = sendMany(socket, messages);
        const double dispatching = dispatchMany(requests);

        printHeading("Pipe, without the pause before each message");
        Table times({"one request at a time", "median us", "p99 us", "largest us", "requests"});
        const auto addRow = [&](const char *name, const Figures &us) {
            times.add({name, fixed(us.median(), 0), fixed(us.quantile(0.99), 0), fixed(us.largest(), 0),
                QString::number(us.count())});
        };
        addRow("write to handler", latency.toHandlerUs);
        addRow("write to reply", latency.toReplyUs);
        times.print();
        printNote(QString());
        Table rates({"throughput", "a second", "us each"});
        rates.add({"queued messages, to the client", fixed(messages / sending, 0),
            fixed(1e6 * sending / messages, 1)});
        rates.add({"requests through the dispatcher", fixed(requests / dispatching, 0),
            fixed(1e6 * dispatching / requests, 1)});
        rates.print();
    }));
    QObject::connect(client.get(), &QThread::finished, &application, &QCoreApplication::quit);
    client->start();
    QCoreApplication::exec();
    client->wait();

    auto *sender = SendQueueThread::instance();
    sender->endQuietly();
    while (!sender->wait(10)) // its last message may still have to be handed over here
        QCoreApplication::processEvents();
    return 0;
}
