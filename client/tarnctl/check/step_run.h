#pragma once

#include "check_step.h"
#include "check_times.h"
#include "check_verdict.h"
#include "device_notes.h"
#include "log_watch.h"
#include "person.h"
#include "service_talk.h"

#include <QString>

#include <chrono>
#include <functional>

namespace tarnctl {

// Carries out the steps of a check and says what was expected and what came. When the service does not talk
// to this client any more, or the EC does not answer, it carries out nothing more.
class StepRun
{
public:
    StepRun(Person &person, ServiceTalk &talk, LogWatch &log, DeviceNotes &devices,
        tarnRecording::RequestJournal &journal, const CheckTimes &times);

    [[nodiscard]] CheckVerdict run(const CheckStep &step);
    // Asks which accessory is attached; the steps go by it.
    [[nodiscard]] QString findAccessory();
    [[nodiscard]] bool mustEnd() const { return hasEnded || person.hasInterrupted(); }
    // The service has gone, or talks to another client.
    [[nodiscard]] bool hasLostService() const { return isLost; }

private:
    [[nodiscard]] bool isApplicable(const CheckStep &step) const;
    [[nodiscard]] CheckVerdict run(const CheckItem &item);
    [[nodiscard]] CheckVerdict ask(const CheckItem &item, const QString &data);
    [[nodiscard]] CheckVerdict remember(const CheckItem &item);
    [[nodiscard]] CheckVerdict repeat(const CheckItem &item);
    [[nodiscard]] CheckVerdict freeConnector();
    [[nodiscard]] CheckVerdict await(const CheckItem &item);
    [[nodiscard]] CheckVerdict look(const CheckItem &item);
    [[nodiscard]] CheckVerdict putBack(const CheckItem &item);
    // Whether what was remembered is read.
    [[nodiscard]] bool isReadBack(const CheckItem &item);
    // The same answer twice, some time apart.
    [[nodiscard]] Exchange settledAnswer(const CheckItem &item);
    [[nodiscard]] Exchange matchingAnswer(
        const QString &command, const QString &data, const std::function<bool(const QString &)> &isWanted);
    [[nodiscard]] CheckVerdict judge(
        const CheckItem &item, const Exchange &exchange, std::chrono::milliseconds took);
    [[nodiscard]] CheckVerdict afterNoAnswer(const Exchange &exchange);
    [[nodiscard]] CheckVerdict quoteLog();
    void noteDevices();
    void noteWindowAnswer(std::chrono::steady_clock::time_point asked, bool isYes);

    Person &person;
    ServiceTalk &talk;
    LogWatch &log;
    DeviceNotes &devices;
    tarnRecording::RequestJournal &journal;
    const CheckTimes times;
    Exchange last; // the last answer
    QString remembered; // of the step; empty: nothing
    bool isCutShort = false; // the rest of the step is left out
    bool hasAsked = false; // something has been sent in this step
    bool hasEnded = false;
    bool isLost = false;
    int unansweredInARow = 0;
};

} // namespace tarnctl
