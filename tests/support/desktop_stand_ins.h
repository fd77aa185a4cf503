#pragma once

#include "platform/processes.h"
#include "platform/user_session.h"
#include "support/seen_texts.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace tarnTest {

// A session whose user answers as the test says, at once, and that notes what was shown.
class ScriptedSession : public tarnPlatform::UserSession
{
public:
    ScriptedSession() { replace(this); }
    ~ScriptedSession() override { replace(nullptr); }
    ScriptedSession(const ScriptedSession &) = delete;
    ScriptedSession &operator=(const ScriptedSession &) = delete;

    [[nodiscard]] bool isServiceSession() const override { return serviceSession; }
    [[nodiscard]] tarnPlatform::Launch runForConsoleUser(
        const QString &program, const QString &argument) override
    {
        note("console", program, argument);
        return {stage, exitCode};
    }
    [[nodiscard]] QString consoleUserDownloadFolder() const override { return downloadFolder; }
    bool asConsoleUser(const std::function<void()> &action) override
    {
        if (downloadFolder.isEmpty())
            return false;
        if (onRightsOfUser)
            onRightsOfUser(true);
        action();
        if (onRightsOfUser)
            onRightsOfUser(false);
        return true;
    }
    [[nodiscard]] int run(
        const QString &program, const QString &argument, std::chrono::milliseconds timeout) override
    {
        note(QString("wait %1").arg(timeout.count()), program, argument);
        return static_cast<int>(exitCode);
    }
    [[nodiscard]] bool startDetached(const QString &program, const QString &argument) override
    {
        note("detached", program, argument);
        return starts;
    }

    bool serviceSession = false;
    tarnPlatform::LaunchStage stage = tarnPlatform::LaunchStage::Ended;
    quint32 exitCode = 1;
    bool starts = true;
    QString downloadFolder;
    std::function<void(bool)> onRightsOfUser; // taken (true) or given back
    QStringList shown; // "detached --graphics-patch-error"
    QString lastProgram;
    std::function<void()> onShow;

private:
    void note(const QString &how, const QString &program, const QString &argument)
    {
        shown << how + ' ' + argument;
        noteSeen("started", program + ' ' + argument);
        lastProgram = program;
        if (onShow)
            onShow();
    }
};

class ScriptedProcesses : public tarnPlatform::ProcessList
{
public:
    ScriptedProcesses() { replace(this); }
    ~ScriptedProcesses() override { replace(nullptr); }
    ScriptedProcesses(const ScriptedProcesses &) = delete;
    ScriptedProcesses &operator=(const ScriptedProcesses &) = delete;

    [[nodiscard]] bool anyOf(const std::function<bool(const QString &)> &matches) override
    {
        return std::any_of(programs.begin(), programs.end(), matches);
    }
    [[nodiscard]] QList<tarnPlatform::RunningProgram> programsCalled(const QString &fileName) override
    {
        QList<tarnPlatform::RunningProgram> found;
        for (const QString &path : paths.filter(QRegularExpression('(' + fileName + ")?$")))
            found << tarnPlatform::RunningProgram {path, processId};
        return found;
    }

    QStringList programs {"init", "explorer.exe"};
    QStringList paths;

private:
    static constexpr qint64 processId = 4711; // of each
};

} // namespace tarnTest
