#include "checks.h"

#include <QDir>
#include <QFileInfo>

namespace tarnctl {

namespace {

const QString registered = QStringLiteral("registered");

// "LocalSystem" is what the service manager calls it.
bool isSystemAccount(const QString &account)
{
    return account.compare(QStringLiteral("LocalSystem"), Qt::CaseInsensitive) == 0;
}

Finding programFinding(const ServiceEntry &service)
{
    const QString program = programOf(service.command);
    if (!QFileInfo(program).isFile()) {
        return {Verdict::Bad, registered, QStringLiteral("as %1, which is not there").arg(service.command),
            advice::reinstall};
    }
    if (program.contains(u' ') && !service.command.trimmed().startsWith(u'"')) {
        return {Verdict::Bad, registered,
            QStringLiteral("as %1, without quotes, so Windows first tries the part before each blank")
                .arg(service.command),
            QStringLiteral("sc.exe config \"Tarn Service\" binPath= \"\\\"%1\\\"\"")
                .arg(QDir::toNativeSeparators(program))};
    }
    return {Verdict::Good, registered, QStringLiteral("as %1").arg(service.command)};
}

Finding startFinding(const ServiceEntry &service)
{
    const QString subject = QStringLiteral("start type");
    switch (service.start) {
    case ServiceEntry::Start::Automatic:
        return {Verdict::Good, subject, QStringLiteral("automatic")};
    case ServiceEntry::Start::OnDemand:
        return {Verdict::Good, subject, QStringLiteral("on demand, so not with the computer")};
    case ServiceEntry::Start::Disabled:
        return {Verdict::Bad, subject, QStringLiteral("disabled"),
            QStringLiteral("sc.exe config \"Tarn Service\" start= auto")};
    default:
        return {Verdict::Unknown, subject, QStringLiteral("one that tarnctl does not know"),
            QStringLiteral("sc.exe config \"Tarn Service\" start= auto")};
    }
}

Finding accountFinding(const ServiceEntry &service)
{
    const QString subject = QStringLiteral("account");
    if (isSystemAccount(service.account))
        return {Verdict::Good, subject, service.account};
    return {Verdict::Bad, subject,
        QStringLiteral("%1, which cannot ask the user at the screen and may not be allowed to use the port "
                       "library")
            .arg(service.account),
        QStringLiteral("sc.exe config \"Tarn Service\" obj= LocalSystem")};
}

Finding recoveryFinding(const ServiceEntry &service)
{
    const QString subject = QStringLiteral("recovery");
    if (!service.restarts || !service.restartsAfterFailedStop)
        return {
            Verdict::Unknown, subject, QStringLiteral("the system does not tell"), advice::asAdministrator};
    if (*service.restarts == 0) {
        return {Verdict::Bad, subject, QStringLiteral("the service is not started again when it crashes"),
            QStringLiteral("sc.exe failure \"Tarn Service\" reset= 86400 actions= "
                           "restart/5000/restart/5000/restart/60000")};
    }
    if (!*service.restartsAfterFailedStop) {
        return {Verdict::Bad, subject,
            QStringLiteral("the service is not started again when it fails while it starts"),
            QStringLiteral("sc.exe failureflag \"Tarn Service\" 1")};
    }
    return {Verdict::Good, subject, QStringLiteral("the service is started again when it crashes")};
}

} // namespace

Findings checkRegistration(const Case &examined)
{
    const ServiceEntry &service = examined.service;
    switch (service.known) {
    case ServiceEntry::Known::NoManager:
        return {
            {Verdict::Good, registered, QStringLiteral("not needed, this system has no service manager")}};
    case ServiceEntry::Known::Unreadable:
        return {{Verdict::Unknown, registered, QStringLiteral("the service manager does not tell"),
            advice::asAdministrator}};
    case ServiceEntry::Known::No:
        if (examined.isRunning()) {
            return {{Verdict::Unknown, registered, QStringLiteral("no, the program runs in a console"),
                QStringLiteral("nothing, if that is intended; the installer registers it")}};
        }
        return {{Verdict::Bad, registered, QStringLiteral("no, Windows does not know the service"),
            QStringLiteral("run the installer, or \"TarnService.exe -install\" as administrator")}};
    case ServiceEntry::Known::Yes:
        break;
    }
    return {
        programFinding(service), startFinding(service), accountFinding(service), recoveryFinding(service)};
}

} // namespace tarnctl
