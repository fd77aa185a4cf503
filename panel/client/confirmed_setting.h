#pragma once

#include "panel/client/age.h"
#include "panel/client/setting_table.h"
#include "panel/look/theme.h"

#include <QObject>
#include <QTimer>

namespace tarn {
class Reply;
}

namespace tarnPanel {

class QuestionQueue;
class ServiceLink;

// One setting as the service has confirmed it. What was asked for is no value before the service says so.
class ConfirmedSetting : public QObject
{
    Q_OBJECT

public:
    struct Status
    {
        QString text;
        // Without the age, which changes all the time.
        QString lastingText;
        Tone tone = Tone::Quiet;
    };

    // The references outlive it; `entry` is a row of the table.
    ConfirmedSetting(
        const SettingEntry &entry, ServiceLink &link, QuestionQueue &questions, QObject *parent = nullptr);

    [[nodiscard]] const SettingEntry &entry() const { return row; }
    // Nothing: not known.
    [[nodiscard]] std::optional<QString> value() const { return confirmed; }
    // Why nothing can be asked for now; empty when it can.
    [[nodiscard]] QString objection() const;
    [[nodiscard]] Status status() const;

    void set(const QString &word);
    // When the service tells its value, and what it needs is attached.
    void read();
    // For the user, who has seen what became of the last order.
    void readAnew();
    // The service has told it by itself.
    void take(const QString &word);

Q_SIGNALS:
    void changed();

private:
    void followLink();
    // Something else is attached than what has this setting, or nothing.
    [[nodiscard]] bool isGone() const;
    void useReply(const QString &word, const tarn::Reply &reply);
    void useReading(const tarn::Reply &reply);
    void confirm(const std::optional<QString> &word, const QString &how);
    [[nodiscard]] QString valueText() const;

    const SettingEntry &row;
    ServiceLink &link;
    QuestionQueue &questions;
    QTimer readingBack;
    std::optional<QString> confirmed;
    // "read", "applied".
    QString manner;
    Age age;
    // What was asked for and has not been answered.
    QString waitingFor;
    // Why the last order was not confirmed, until the next one.
    QString problem;
    // Why the last reading failed.
    QString readingProblem;
    // From before the connection was lost.
    bool isOld = false;
    bool isReading = false;
};

} // namespace tarnPanel
