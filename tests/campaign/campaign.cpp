#include "campaign.h"

#include "device/ec_access_lock.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "pipe/tarn_pipe_server.h"
#include "recovery.h"
#include "request_catalogue.h"
#include "support/queued_messages.h"
#include "support/reply_rules.h"

#include <QJsonDocument>

namespace tarnCampaign {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using namespace tarnSimulator;

constexpr auto cyclePause = 100ms; // the loop's own
constexpr int keptSteps = 40;
constexpr int noticedWithin = 3; // cycles
constexpr int cyclesBetweenNotificationChecks = 2000;

} // namespace

Campaign::Campaign(CampaignMachine &subject, std::uint64_t seed, int wantedCycles)
    : machine(subject)
    , random(seed)
    , gpu(subject)
    , cycles(wantedCycles)
{ }

QString Campaign::run()
{
    machine.clock.onWait = [this](std::chrono::milliseconds duration) {
        onWait(duration);
    };
    EcDirverReader::instance()->run();
    machine.clock.onWait = {};
    checkNotifications();
    if (firstFault.isEmpty())
        return {};
    return firstFault + "\nin cycle " + QString::number(cycle) + ", after:\n  " + steps.join("\n  ");
}

void Campaign::onWait(std::chrono::milliseconds duration)
{
    if (stepping)
        return;
    const bool isFree = !ecAccessMutex.isLocked() || inUpdateMode;
    if (duration == cyclePause) {
        if (isFree) {
            betweenCycles();
            hasLooked = false;
        } else {
            hasLooked = true; // at the connector
            ++cycle;
        }
    } else if (!isFree && !isQuiet() && random.oneIn(4000)) {
        withinACycle();
    }
}

void Campaign::betweenCycles()
{
    stepping = true;
    machine.clock.forgetWaits();
    checkRules();
    if (!isQuiet())
        step();
    else if (cycle >= quietUntil)
        endQuietTime();
    checkRules();
    stepping = false;
    if (cycle >= nextNotificationCheck) {
        nextNotificationCheck = cycle + cyclesBetweenNotificationChecks;
        checkNotifications();
    }
    if (cycle >= cycles || !firstFault.isEmpty())
        EcDirverReader::instance()->requestEnd();
}

void Campaign::withinACycle()
{
    stepping = true;
    gpu.computerChanged();
    if (random.oneIn(3))
        changeAccessory();
    else
        switchFault();
    stepping = false;
}

void Campaign::checkRules()
{
    check(ecAccessMutex.isLocked() == inUpdateMode ? QString() : "the EC is not given back");
    const auto &devices = machine.state->devices;
    check(devices.listsOpened == devices.listsClosed ? QString() : "a device list is left open");
    check(gpu.endCycle());
    checkExchanges();
}

// The host leaves an exchange unfinished only when the EC takes no bytes; its next command then breaks that
// exchange off.
void Campaign::checkExchanges()
{
    auto &seen = machine.state->faultsSeen;
    const bool wasStuck = machine.faults().isOn(Fault::IbfStuck) || machine.faults().wasOn(Fault::IbfStuck);
    seen.store(0);
    const auto &counters = machine.state->counters;
    const std::uint64_t before =
        std::exchange(channelMistakes, counters.abortedCommands + counters.writtenWhileFull);
    check(wasStuck || mayBreakOff || channelMistakes == before
            ? QString()
            : "an exchange with the EC is broken off, or a byte written while IBF was set");
    mayBreakOff = wasStuck || (mayBreakOff && machine.isExchangeOpen());
}

void Campaign::checkNotifications()
{
    const QStringList messages = tarnTest::queuedMessages();
    for (; notificationsChecked < messages.size(); ++notificationsChecked) {
        const QString &message = messages.at(notificationsChecked);
        const QString fault = tarnTest::faultOfNotification(message);
        check(fault.isEmpty() ? QString() : fault + " of the notification " + message);
    }
}

void Campaign::check(const QString &fault)
{
    if (firstFault.isEmpty())
        firstFault = fault;
}

void Campaign::step()
{
    struct Choice
    {
        int weight;
        void (Campaign::*take)();
    };
    static constexpr Choice choices[] = {
        {30, &Campaign::sendRequest},
        {8, &Campaign::switchFault},
        {3, &Campaign::recover},
        {6, &Campaign::changeAccessory},
        {12, &Campaign::fireEvent},
        {4, &Campaign::changeDevices},
        {4, &Campaign::changeHost},
        {4, &Campaign::changeUser},
        {2, &Campaign::spoilFile},
    };
    constexpr int nothing = 25;
    int total = nothing;
    for (const Choice &choice : choices)
        total += choice.weight;
    int thrown = random.below(total);
    for (const Choice &choice : choices) {
        if (thrown < choice.weight) {
            (this->*choice.take)();
            return;
        }
        thrown -= choice.weight;
    }
}

void Campaign::note(const QString &text)
{
    steps << QString::number(cycle) + ": " + text;
    if (steps.size() > keptSteps)
        steps.removeFirst();
}

void Campaign::sendRequest()
{
    QJsonObject request = randomRequest(random, inUpdateMode);
    // Held for a few cycles at most.
    if (inUpdateMode && random.oneIn(3))
        request = {{"cmd", "requestLeaveMcuUpdateMode"}};
    // Between its test of the holds and its lock the loop would wait for the end of the mode, on this thread.
    if (!hasLooked && request.value("cmd") == "requestEnterMcuUpdateMode")
        return;
    const QByteArray bytes = QJsonDocument(request).toJson(QJsonDocument::Compact);
    note("send " + bytes);
    ++requests;
    const QString reply = tarnPipeServer::TarnPipeServer::instance()->dispatch(bytes);
    note("received " + reply);
    const QString command = request.value("cmd").toString();
    if (command == "requestEnterMcuUpdateMode" && reply.contains("successed"))
        inUpdateMode = true;
    else if (command == "requestLeaveMcuUpdateMode")
        inUpdateMode = false;
    const QString fault = tarnTest::faultOfReply(request, reply);
    check(fault.isEmpty() ? QString() : fault + " in the reply to " + bytes + ": " + reply);
}

void Campaign::recover()
{
    if (inUpdateMode)
        return;
    note("all faults cleared");
    ++recoveries;
    check(faultOfRecovery(machine, random, &expectedAccessory));
    expectActivation =
        (expectedAccessory == ACCESSORY_GRAPHICS || expectedAccessory == ACCESSORY_GRAPHICS_16G)
        && machine.computer.armEvent({APP_EVENT_GRAPHICS_CONNECTED, 0});
    // Events that still wait come first, one a cycle.
    quietUntil = cycle + noticedWithin + static_cast<int>(machine.computer.armedEvents().size());
}

void Campaign::endQuietTime()
{
    quietUntil = 0;
    auto *monitor = EcDirverReader::instance();
    check(monitor->accessoryKind() == expectedAccessory && !monitor->accessoryName().isEmpty()
            ? QString()
            : QStringLiteral("accessory %1 is not noticed").arg(expectedAccessory));
    if (!expectActivation)
        return;
    const auto gpuSlot = machine.computer.devices().find("gpu");
    constexpr int active = GPU_PRESENT | GPU_DRIVER_INSTALLED | GPU_STARTED;
    const bool isActive = gpuSlot && machine.computer.devices().device(*gpuSlot).started
        && machine.computer.gpuReports().gpuDriverData == active;
    check(isActive ? QString() : "the GPU is not brought up");
}

} // namespace tarnCampaign
