#include "panel/client/connection_text.h"

#include <QDir>

#include <algorithm>
#include <iterator>

namespace tarnPanel {

namespace {

using tarn::Client;
using L = QLatin1StringView;

struct StateWords
{
    Client::State state;
    L text;
};

constexpr StateWords stateWords[] = {
    {Client::State::Closed, L("Not connected.")},
    {Client::State::Waiting, L("Waiting for the service; tries again by itself.")},
    {Client::State::Connected, L("Connected to the service.")},
    {Client::State::TakenOver,
        L("The service does not talk to this window: another program uses it, or it hangs. Tries again after "
          "a "
          "minute.")},
};

struct ProblemWords
{
    Client::Problem problem;
    // "%1": the pipe; "%2": the system's words.
    L text;
};

constexpr ProblemWords problemWords[] = {
    {Client::Problem::NoProblem, L("")},
    {Client::Problem::NoService, L("No service has the pipe %1 open: it does not run, or has just started.")},
    {Client::Problem::AccessDenied,
        L("The pipe %1 does not let this user in; on Windows an administrator is needed.")},
    {Client::Problem::NameTooLong,
        L("The name of the pipe %1 is too long for the system; a shorter TMPDIR helps.")},
    {Client::Problem::ServiceGone, L("The service has closed the connection: it ended, or was restarted.")},
    {Client::Problem::Silence,
        L("The service had fallen silent: another program uses it, or it hangs. So the connection was "
          "closed.")},
    {Client::Problem::SystemError, L("The pipe %1 cannot be used: %2")},
};

struct AccessoryWords
{
    tarn::Accessory accessory;
    L text;
};

constexpr AccessoryWords accessoryWords[] = {
    {tarn::Accessory::Disconnected, L("nothing attached")},
    {tarn::Accessory::Dock, L("dock")},
    {tarn::Accessory::GraphicsBox, L("graphics box")},
    {tarn::Accessory::KVane, L("KVane")},
    {tarn::Accessory::Unknown, L("one that the service does not know")},
};

} // namespace

QString problemText(const Client &client)
{
    const auto *const row = std::ranges::find(problemWords, client.problem(), &ProblemWords::problem);
    if (row == std::end(problemWords))
        return client.problemText();
    QString text = row->text.toString();
    return text.replace(QStringLiteral("%1"), QDir::toNativeSeparators(client.pipePath()))
        .replace(QStringLiteral("%2"), client.problemText());
}

QString connectionText(const Client &client)
{
    const auto *const row = std::ranges::find(stateWords, client.state(), &StateWords::state);
    const QString text = row->text.toString();
    const bool isFine = client.state() == Client::State::Connected || client.state() == Client::State::Closed;
    return isFine ? text : (text + u' ' + problemText(client)).trimmed();
}

QString accessoryText(std::optional<tarn::Accessory> accessory)
{
    if (!accessory)
        return QStringLiteral("unknown");
    return std::ranges::find(accessoryWords, *accessory, &AccessoryWords::accessory)->text.toString();
}

} // namespace tarnPanel
