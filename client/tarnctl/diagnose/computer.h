#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace tarnctl {

// What the system's service manager keeps of the service, and what it does now. What could not be read has no
// value.
struct ServiceEntry
{
    enum class Known { NoManager, No, Unreadable, Yes };
    enum class State { Stopped, Starting, Stopping, Running, Paused, Other };
    enum class Start { Automatic, OnDemand, Disabled, Other };

    Known known = Known::NoManager;
    QString command {}; // with its quotes, if it has some
    Start start = Start::Other;
    QString account {};
    std::optional<int> restarts {}; // recovery actions that start the service again
    std::optional<bool> restartsAfterFailedStop {}; // the failure flag
    State state = State::Other;
    qint64 processId = 0; // 0: none
    quint32 lastExitCode = 0;
};

// A process. The path is empty when it may not be read.
struct TimedProgram
{
    QString path;
    qint64 processId = 0;
    std::optional<QDateTime> started {};
};

struct PipeState
{
    bool exists = false;
    std::optional<bool> mayConnect {};
    QString problem {}; // what keeps the pipe from being looked for; empty when nothing does
};

// The computer, as far as a diagnosis has to ask the system. Nothing here opens a connection to the service.
class Computer
{
public:
    virtual ~Computer() = default;

    [[nodiscard]] virtual ServiceEntry service() = 0;
    // The processes whose program has this file name, in any spelling of upper and lower case; nothing when
    // the processes cannot be listed.
    [[nodiscard]] virtual std::optional<QList<TimedProgram>> programsCalled(const QString &fileName) = 0;
    [[nodiscard]] virtual PipeState pipe(const QString &name) = 0;
    // The folder that the installer has noted; empty when there is none.
    [[nodiscard]] virtual QString installedFolder() = 0;
    // The version that a program's file carries; empty when it carries none.
    [[nodiscard]] virtual QString fileVersion(const QString &program) = 0;
    // In the order of their use: the folders in which the service looks for firmware.
    [[nodiscard]] virtual QStringList downloadFolders() = 0;
    // On the disk of the folder.
    [[nodiscard]] virtual std::optional<qint64> freeBytes(const QString &folder) = 0;
    // "name: version" of the system and of what matters beside it.
    [[nodiscard]] virtual QStringList versions() = 0;

    [[nodiscard]] static Computer &ofSystem();
};

} // namespace tarnctl
