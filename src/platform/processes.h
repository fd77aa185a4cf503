#pragma once

#include "platform/seam.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tarnPlatform {

// A process. Its program's path is empty when that cannot be read.
struct RunningProgram
{
    QString path;
    qint64 processId = 0;
};

// The processes of the computer. Any thread.
class ProcessList : public Seam<ProcessList>
{
public:
    virtual ~ProcessList() = default;
    // Whether `matches` is true of the file name of any of their programs, in a snapshot; ends at the first
    // match. False also when there is no snapshot.
    [[nodiscard]] virtual bool anyOf(const std::function<bool(const QString &)> &matches) = 0;
    // Those whose program has this file name, in any spelling of upper and lower case. If the processes
    // cannot be listed, the result is one without path and with the number 0.
    [[nodiscard]] virtual QList<RunningProgram> programsCalled(const QString &fileName) = 0;
    // Their paths.
    [[nodiscard]] QStringList pathsOf(const QString &fileName)
    {
        QStringList paths;
        for (const RunningProgram &program : programsCalled(fileName))
            paths << program.path;
        return paths;
    }

private:
    friend class Seam<ProcessList>;
    static ProcessList &ofSystem();
};

class ProcessTie;

// A program that ends with this process at the latest, however this one ends. It is started with startTied()
// and waited for on the same thread, which lives as long as the program: on Unix the program ends with that
// thread.
class TiedProcess : public QProcess
{
public:
    TiedProcess();
    ~TiedProcess() override;

    // True when the program runs.
    [[nodiscard]] bool startTied(const QString &program, const QStringList &arguments);

private:
    std::unique_ptr<ProcessTie> tie;
};

// Separates a process that is going to be started from this one: it does not share this process's console or
// terminal and is in a session or group of its own, so that neither a Ctrl+C nor the end of the console
// reaches it. Its standard streams are up to the caller.
void separateFromThisProcess(QProcess &process);

// Waits for the end of a process that has been started by this thread; so long at most, -1: for ever. False
// when it still runs. Events of the thread may be handled meanwhile.
bool waitForEnd(QProcess &process, int milliseconds = -1);

} // namespace tarnPlatform
