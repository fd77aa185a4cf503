#pragma once

#include "platform/seam.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tarnPlatform {

// The processes of the computer. Any thread.
class ProcessList : public Seam<ProcessList>
{
public:
    virtual ~ProcessList() = default;
    // Walks a snapshot of the file names of their programs until the visitor says that it has seen enough;
    // true when it did. False also when there is no snapshot.
    [[nodiscard]] virtual bool anyOf(const std::function<bool(const QString &)> &matches) = 0;
    // The full paths of those programs that have this file name, in any spelling of upper and lower case. One
    // that cannot be read is empty, and so is the only one where the processes cannot be listed.
    [[nodiscard]] virtual QStringList pathsOf(const QString &fileName) = 0;

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

// Makes a process that is going to be started one that lives apart from this one: it has no part in this
// process's console or terminal and is in a session or group of its own, so that neither a Ctrl+C nor the end
// of the console reaches it. What connects its standard streams with this process is up to the caller.
void separateFromThisProcess(QProcess &process);

// Waits for the end of a process that has been started by this thread; so long at most, -1: for ever. False
// when it still runs. Events of the thread may be handled meanwhile.
bool waitForEnd(QProcess &process, int milliseconds = -1);

} // namespace tarnPlatform
