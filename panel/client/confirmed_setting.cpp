#include "panel/client/confirmed_setting.h"

#include "panel/client/question_queue.h"
#include "panel/client/service_link.h"

namespace tarnPanel {

ConfirmedSetting::ConfirmedSetting(
    const SettingEntry &entry, ServiceLink &serviceLink, QuestionQueue &questionQueue, QObject *parent)
    : QObject(parent)
    , row(entry)
    , link(serviceLink)
    , questions(questionQueue)
{
    readingBack.setSingleShot(true);
    readingBack.setInterval(row.readBackAfter);
    connect(&readingBack, &QTimer::timeout, this, &ConfirmedSetting::read);
    connect(&link, &ServiceLink::changed, this, [this] {
        followLink();
        Q_EMIT changed();
    });
}

void ConfirmedSetting::followLink()
{
    if (!link.isConnected()) {
        isOld = confirmed.has_value();
        isReading = false;
        readingBack.stop();
    } else if (isGone()) {
        // It was that of an accessory that is gone.
        confirmed.reset();
        problem.clear();
        readingProblem.clear();
        isReading = false;
    }
}

bool ConfirmedSetting::isGone() const
{
    return link.accessory() && !isAttached(row.needs, link);
}

QString ConfirmedSetting::objection() const
{
    if (!waitingFor.isEmpty())
        return QStringLiteral("Setting to %1…").arg(shownWord(row, waitingFor));
    return objectionTo(row.needs, link);
}

void ConfirmedSetting::set(const QString &word)
{
    if (!objection().isEmpty()) {
        // The control may show already what cannot be had.
        Q_EMIT changed();
        return;
    }
    waitingFor = word;
    problem.clear();
    readingBack.stop();
    Q_EMIT changed();
    link.order(
        row.setter.toString(), word, this, [this, word](const tarn::Reply &reply) { useReply(word, reply); });
}

void ConfirmedSetting::useReply(const QString &word, const tarn::Reply &reply)
{
    waitingFor.clear();
    if (reply.outcome() == tarn::Outcome::Sent) {
        confirm(std::nullopt, {});
        problem = QStringLiteral("Sent; the service never answers this.");
    } else if (!reply.isAnswered()) {
        problem = QStringLiteral("Not confirmed: %1. %2").arg(shownWord(row, word), reply.reason());
        if (reply.outcome() == tarn::Outcome::Failed && !row.whenFailed.isEmpty())
            problem += u' ' + row.whenFailed;
    } else if (row.getter.isEmpty()) {
        const std::optional<QString> value = valueAfter(row, word, reply.value());
        // What the service answers to an order may be older than the order.
        confirm(value, isValueOf(row, word) ? QStringLiteral("applied") : QStringLiteral("told"));
        if (!value)
            problem = QStringLiteral("The service applied none (it answered %1).").arg(reply.value());
    }
    // What was not answered may have been carried out all the same.
    if (!row.getter.isEmpty() && link.isConnected())
        readingBack.start();
    Q_EMIT changed();
}

void ConfirmedSetting::readAnew()
{
    if (waitingFor.isEmpty())
        problem.clear();
    read();
}

void ConfirmedSetting::read()
{
    if (row.getter.isEmpty() || !link.isConnected() || !isAttached(row.needs, link))
        return;
    isReading = true;
    Q_EMIT changed();
    questions.add(row.getter.toString(), [this](const std::function<void()> &done) {
        // Unplugged while the question waited.
        if (isGone())
            return done();
        link.ask(row.getter.toString(), {}, this, [this, done](const tarn::Reply &reply) {
            if (!isGone())
                useReading(reply);
            Q_EMIT changed();
            done();
        });
    });
}

void ConfirmedSetting::useReading(const tarn::Reply &reply)
{
    isReading = false;
    if (reply.isAnswered() && isValueOf(row, reply.value())) {
        confirm(reply.value(), QStringLiteral("read"));
    } else if (reply.isAnswered()) {
        confirm(std::nullopt, {});
        readingProblem = QStringLiteral("The service answered \"%1\", which is no value.").arg(reply.value());
    } else {
        isOld = confirmed.has_value();
        readingProblem = QStringLiteral("Not read: ") + reply.reason();
    }
}

void ConfirmedSetting::take(const QString &word)
{
    // The service also tells what an accessory that is gone had.
    if (isGone())
        return;
    confirm(word, QStringLiteral("told"));
    Q_EMIT changed();
}

void ConfirmedSetting::confirm(const std::optional<QString> &word, const QString &how)
{
    confirmed = word;
    readingProblem.clear();
    manner = how;
    isOld = false;
    age.begin();
}

QString ConfirmedSetting::valueText() const
{
    if (!confirmed)
        return QStringLiteral("Unknown");
    return shownWord(row, *confirmed) + (isOld ? QStringLiteral(" (old)") : QString());
}

ConfirmedSetting::Status ConfirmedSetting::status() const
{
    if (!waitingFor.isEmpty())
        return {objection(), objection(), Tone::Waiting};
    QStringList reasons {objection(), problem, readingProblem};
    if (reasons.first().isEmpty() && isReading)
        reasons.prepend(QStringLiteral("Reading…"));
    reasons.removeAll({});
    const QString reason = reasons.join(u' ');
    const bool isBad = !problem.isEmpty() || !readingProblem.isEmpty();
    const QString lasting = (valueText() + QStringLiteral(". ") + reason).trimmed();
    if (!confirmed && !reason.isEmpty())
        return {reason, lasting, isBad ? Tone::Bad : Tone::Quiet};
    if (!confirmed) {
        const QString why = row.getter.isEmpty()
            ? QStringLiteral(": the service tells it only when it sets it.")
            : QStringLiteral(": not told yet.");
        return {valueText() + why, lasting, Tone::Quiet};
    }
    const QString text = QStringLiteral("%1, %2 %3. %4").arg(valueText(), manner, age.text(), reason);
    const Tone fine = isOld || isReading ? Tone::Waiting : Tone::Good;
    return {text.trimmed(), lasting, isBad ? Tone::Bad : fine};
}

} // namespace tarnPanel
