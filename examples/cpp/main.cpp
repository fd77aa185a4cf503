// Watches the battery, the power profile and the accessory of the computer through Tarn Service, and prints a
// line for each change and each vain attempt to connect. It goes on when the service is restarted, and when
// another program has used it.
//
//     cmake -S . -B build -DCMAKE_PREFIX_PATH=FOLDER     where the client library is installed; Qt's folder
//     cmake --build build                                after a semicolon, if CMake does not find it itself
//     build/battery_watcher --for 60
//
// On Windows start it as an administrator, because the service lets nobody else in.

#include <tarn/client.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

namespace {

void show(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

QString problemOf(const tarn::Client &client)
{
    switch (client.problem()) {
    case tarn::Client::Problem::NoProblem:
        return "the first attempt begins";
    case tarn::Client::Problem::NoService:
        return "no service runs";
    case tarn::Client::Problem::AccessDenied:
        return "only administrators may use " + client.pipePath();
    case tarn::Client::Problem::NameTooLong:
        return "the system allows no name as long as " + client.pipePath();
    case tarn::Client::Problem::ServiceGone:
        return "the service has closed the connection";
    case tarn::Client::Problem::Silence:
        return "the service has fallen silent";
    case tarn::Client::Problem::SystemError:
        return client.problemText();
    }
    return {};
}

QString connectionOf(const tarn::Client &client)
{
    switch (client.state()) {
    case tarn::Client::State::Closed:
        return "closed";
    case tarn::Client::State::Waiting:
        return "waiting: " + problemOf(client);
    case tarn::Client::State::Connected:
        return "connected";
    case tarn::Client::State::TakenOver:
        return "another program has taken the service over";
    }
    return {};
}

// The answer comes later, on this thread; nothing waits here. The next question follows after the answer, so
// that a slow service is not asked faster than it answers.
void askForProfile(tarn::Client &client, QTimer &next)
{
    client.getTarnPowerMode().then(&client, [&](const tarn::ReplyWith<tarn::Profile> &reply) {
        const auto profile = reply.result();
        const QString otherwise = reply.isAnswered() ? reply.value() : "unknown: " + reply.reason();
        show("profile " + (profile ? tarn::nameOf(*profile) : otherwise));
        if (client.state() == tarn::Client::State::Connected)
            next.start();
    });
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions({{"for", "End after SECONDS.", "SECONDS"},
        {"every", "Ask for the profile every SECONDS.", "SECONDS", "60"}});
    options.process(application);

    QTimer nextQuestion;
    nextQuestion.setSingleShot(true);
    nextQuestion.setInterval(options.value("every").toInt() * 1000);
    tarn::Client client;

    QObject::connect(&nextQuestion, &QTimer::timeout, &client, [&] { askForProfile(client, nextQuestion); });
    QObject::connect(&client, &tarn::Client::stateChanged, &client, [&](tarn::Client::State state) {
        show(connectionOf(client));
        nextQuestion.stop();
        if (state == tarn::Client::State::Connected)
            askForProfile(client, nextQuestion);
    });
    // After each attempt; the client goes on trying.
    QObject::connect(&client, &tarn::Client::connectingFailed, &client, [&] { show(connectionOf(client)); });

    // Read anew at each connection. Without a value: not known now.
    QObject::connect(&client, &tarn::Client::batteryLevelChanged, &client, [](std::optional<int> level) {
        show("battery " + (level ? QString::number(*level) + " %" : "unknown"));
    });
    QObject::connect(&client, &tarn::Client::chargingChanged, &client, [](std::optional<bool> isCharging) {
        show(QString("charging ") + (isCharging ? *isCharging ? "yes" : "no" : "unknown"));
    });
    QObject::connect(
        &client, &tarn::Client::accessoryChanged, &client, [](std::optional<tarn::Accessory> accessory) {
            show("accessory " + (accessory ? tarn::nameOf(*accessory) : "unknown"));
        });
    QObject::connect(&client, &tarn::Client::graphicsDisengaged, &client,
        [] { show("the graphics box is released: stop using its GPU now"); });

    client.open();
    if (options.isSet("for"))
        QTimer::singleShot(options.value("for").toInt() * 1000, &client, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
