#pragma once

#include "client/tarnctl/check/check_command.h"
#include "unit/client/fake_service.h"
#include "unit/client/tarnctl/diagnose/sound_computer.h"
#include "unit/client/tarnctl/tool_run.h"

#include <QMap>
#include <QTimer>

#include <functional>

namespace tarnClientTest {

// A sound computer whose service answers everything and records, until a test changes something.
class CheckTest : public Diagnosis
{
protected:
    CheckTest();

    [[nodiscard]] ToolRun check(
        const QStringList &arguments, const QByteArray &typedLines = "\ny\ny\ny\ny\n");
    [[nodiscard]] ToolRun check(const QStringList &arguments, const ToolInput &input);
    // What was sent, as "command data".
    [[nodiscard]] QStringList sent() const;
    // The same as the journal has it, of the first file or of one by name.
    [[nodiscard]] QStringList noted(const QString &name = {}) const;
    [[nodiscard]] QString fileText(const QString &name) const;
    [[nodiscard]] QStringList files(const QString &pattern) const;
    [[nodiscard]] QString report() const;
    // Answers as a sound service does.
    void answer(const QJsonObject &request);
    void warn(const QString &text) const;
    // Goes on once the check has said the text.
    void whenShown(const QByteArray &text, std::function<void()> action);
    // The same for an accessory that somebody plugs in, or takes off.
    void attachWhenShown(const QByteArray &text, const QString &accessory, const QString &code = {});
    // The service goes on recording in another file.
    void beginRecording(const QString &name, std::uint64_t firstAccess);

    FakeService service;
    // By which getters answer; setters change them.
    QMap<QString, QString> values;
    // Called before each answer; true when the test has taken care of the request.
    std::function<bool(const QString &command, const QString &data)> instead {};
    tarnctl::CheckTimes times;
    bool isRecording = true;

private:
    struct Cue
    {
        QByteArray text;
        std::function<void()> action;
    };

    void record();
    void lookForCues(const QByteArray &shown);

    QList<Cue> cues;
    QString recordingName;
    std::uint64_t recordingBegan = 0;
    QTimer recordingTimer;
    QMap<QString, QString> getterOf;
};

} // namespace tarnClientTest
