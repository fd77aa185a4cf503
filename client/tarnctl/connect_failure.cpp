#include "connect_failure.h"

#include "client/pipe_address.h"

namespace tarnctl {

namespace {

using tarn::Client;

QString tooLongText(const tarn::PipeAddress &address)
{
    return QStringLiteral("No service can have this pipe: its full name has %1 %2, and it may have at most "
                          "%3.\n%4\n%5")
        .arg(QString::number(address.length), address.unit, QString::number(address.longest), address.text,
            address.shortening);
}

} // namespace

QString connectFailureText(const QString &pipeName, Client::Problem problem, const QString &systemText)
{
    const tarn::PipeAddress address = tarn::pipeAddress(pipeName);
    if (problem == Client::Problem::NameTooLong)
        return tooLongText(address);
    if (problem == Client::Problem::AccessDenied) {
        return QStringLiteral("The pipe \"%1\" refuses this user.\nRun tarnctl as the user who started the "
                              "service, or as administrator.")
            .arg(pipeName);
    }
    const bool isAbsent = problem == Client::Problem::NoService;
    const QString reason = isAbsent ? QString() : QStringLiteral(": %1").arg(systemText);
    return QStringLiteral("No service answers on the pipe \"%1\" (%2)%3.\nStart it first: ./run on the "
                          "simulated computer, or the service \"Tarn Service\" on Windows.")
        .arg(pipeName, address.text, reason);
}

} // namespace tarnctl
