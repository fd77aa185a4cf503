#include "record_command.h"

#include "diagnose/case.h"
#include "diagnose/finding.h"

#include "platform/paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace tarnctl {

namespace {

const QString restarting =
    QStringLiteral("(sc.exe stop \"Tarn Service\", then sc.exe start \"Tarn Service\")");

// An empty string when it could be done, else why not.
QString switchOn(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(QFileInfo(path).path()).isDir())
        return QStringLiteral("the folder is not there; is the service installed?");
    return file.open(QIODevice::WriteOnly)
        ? QString()
        : file.errorString() + QStringLiteral("; ") + advice::asAdministrator;
}

QString switchOff(const QString &path)
{
    QFile file(path);
    return !file.exists() || file.remove()
        ? QString()
        : file.errorString() + QStringLiteral("; ") + advice::asAdministrator;
}

// What it was says nothing about what the running service looked at when it started.
QString whatFollows(bool isOn, bool was, bool isRunning)
{
    if (!isRunning)
        return isOn ? QStringLiteral("It begins when the service is started.") : QString();
    if (isOn && was)
        return QStringLiteral("If no new recording is written, restart the service ") + restarting + u'.';
    const QString text = isOn
        ? QStringLiteral("It begins when the service is restarted")
        : QStringLiteral("A recording that runs goes on until the service is restarted");
    return text + QStringLiteral(" ") + restarting + QStringLiteral(".");
}

} // namespace

ExitCode runRecord(const QString &word, ToolStreams &streams, Computer &computer)
{
    const bool isOn = word == QStringLiteral("on");
    if (!isOn && word != QStringLiteral("off")) {
        streams.complain(QStringLiteral("record takes on or off, not \"%1\".").arg(word));
        return ExitCode::Usage;
    }
    const Case examined = examine(computer, QString(), QDateTime::currentDateTime());
    const QString path = examined.installation.path(tarnPlatform::path::recordingSwitch);
    const bool was = QFileInfo::exists(path);
    const QString problem = isOn ? switchOn(path) : switchOff(path);
    if (!problem.isEmpty()) {
        streams.complain(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), problem));
        return ExitCode::Usage;
    }
    const QString state = isOn ? QStringLiteral("on") : QStringLiteral("off");
    QStringList lines {was == isOn ? QStringLiteral("The recording was %1 already.").arg(state)
                                   : QStringLiteral("The recording is %1.").arg(state)};
    lines << whatFollows(isOn, was, examined.isRunning());
    if (isOn) {
        lines << QStringLiteral("The recordings are in %1.")
                     .arg(QDir::toNativeSeparators(QFileInfo(path).path()));
    }
    lines.removeAll(QString());
    static_cast<void>(streams.printLine(lines.join(u'\n'))); // a failed write: the reader has closed it
    return ExitCode::Done;
}

} // namespace tarnctl
