#include "campaign/campaign_machine.h"
#include "device/ec_access_lock.h"
#include "device/ec_registers.h"
#include "device/monitor/ec_dirver_reader.h"
#include "figures.h"
#include "pipe/tarn_pipe_server.h"
#include "platform/waits.h"
#include "support/command_samples.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <functional>
#include <numeric>
#include <optional>

using namespace tarnBench;
using namespace tarnDeviceInfos;
using tarn::CommandEntry;
using tarn::DataKind;

namespace {

constexpr double barPercent = 2;

struct Command
{
    QByteArray request;
    std::function<void()> prepare = [] {
    };
    double waitsMs = 0;
    double workMs = 0; // when waiting takes no time
    Figures realMs {};
    Figures busyMs {}; // of it, when no wait was going on
};

// Commands that belong together, measured one after the other with the accessory they are for.
struct Group
{
    std::optional<quint8> accessory; // empty: what is attached
    std::vector<Command> commands;
};

void makeTool(tarnCampaign::CampaignMachine &machine, const QString &name)
{
    machine.folder.write(name, "#!/bin/sh\n");
    QFile(machine.folder.path(name)).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

std::vector<Command> commandsOf(const CommandEntry &entry, tarnCampaign::CampaignMachine &machine)
{
    std::vector<Command> commands;
    for (const QString &data : tarnTest::kindsOfData(entry)) {
        Command command {tarnTest::requestOf(entry, data)};
        if (entry.data.kind == DataKind::McuFileName || entry.data.kind == DataKind::EcFileName) {
            command.prepare = [&machine, data] {
                machine.folder.write(QStringLiteral("Downloads/") + data, QByteArray(16384, 'f'));
            };
        }
        commands.push_back(command);
    }
    return commands;
}

// Every command that a client may send. Those that take the EC for good come last.
std::vector<Group> everyCommand(tarnCampaign::CampaignMachine &machine, bool isQuick)
{
    std::vector<Group> groups;
    std::vector<Group> last;
    for (const CommandEntry &entry : tarn::commandCatalogue()) {
        const tarnTest::EcHold hold = tarnTest::sampleOf(entry.name).hold;
        std::vector<Command> commands = commandsOf(entry, machine);
        if (hold == tarnTest::EcHold::ForGood)
            last.push_back({std::nullopt, commands});
        else if (hold == tarnTest::EcHold::Ends) // of what stands before it in the catalogue
            groups.back().commands.insert(groups.back().commands.end(), commands.begin(), commands.end());
        else if (!isQuick || entry.data.kind != DataKind::McuFileName)
            groups.push_back({tarnTest::accessoryFor(entry).value_or(ACCESSORY_DOCK), commands});
    }
    groups.insert(groups.end(), last.begin(), last.end());
    return groups;
}

void attach(std::optional<quint8> accessory, tarnCampaign::CampaignMachine &machine)
{
    if (!accessory || machine.attachedCode() == *accessory)
        return;
    machine.attach(*accessory);
    const EcAccess access;
    EcDirverReader::instance()->pollAccessory(); // the updates ask the monitor what is attached
}

double millisecondsOf(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

// Runs the command; its own milliseconds of real time.
double run(Command &command)
{
    command.prepare();
    QElapsedTimer timer;
    timer.start();
    tarnPipeServer::TarnPipeServer::instance()->dispatch(command.request);
    return millisecondsOf(timer);
}

double sum(const std::vector<int> &waits)
{
    return std::accumulate(waits.begin(), waits.end(), 0.0);
}

// As often as the time allows, so that the median of the short commands rests on many runs.
int roundsFor(double waitsMs, bool isQuick)
{
    const double budgetMs = isQuick ? 150 : 4000;
    const int atLeast = isQuick ? 1 : 3;
    return std::clamp(static_cast<int>(budgetMs / std::max(waitsMs, 1.0)), atLeast, 50);
}

void measure(Group &group, tarnCampaign::CampaignMachine &machine, bool isQuick)
{
    attach(group.accessory, machine);
    // On virtual time first, which tells the waits of the sequence and what it costs without them. The first
    // round creates what is created on first use.
    double groupMs = 0;
    for (int round = 0; round < 2; ++round) {
        groupMs = 0;
        for (Command &command : group.commands) {
            machine.clock.forgetWaits();
            command.workMs = run(command);
            command.waitsMs = sum(machine.clock.waits());
            groupMs += command.waitsMs;
        }
    }
    // And then for real, as the service itself sleeps. The system ends waits late.
    double sleptMs = 0;
    machine.clock.onWait = [&sleptMs](std::chrono::milliseconds wait) {
        QElapsedTimer timer;
        timer.start();
        tarnPlatform::systemSleep(wait);
        sleptMs += millisecondsOf(timer);
    };
    const double meanMs = groupMs / static_cast<double>(group.commands.size());
    for (int round = 0; round < roundsFor(meanMs, isQuick); ++round) {
        for (Command &command : group.commands) {
            machine.clock.forgetWaits();
            machine.log.clear();
            sleptMs = 0;
            const double realMs = run(command);
            command.realMs.add(realMs);
            command.busyMs.add(realMs - sleptMs);
            if (sum(machine.clock.waits()) != command.waitsMs)
                qFatal("%s waits another time for real", command.request.constData());
        }
    }
    machine.clock.onWait = {};
}

double morePercentOf(const Command &command)
{
    return 100 * (command.realMs.median() - command.waitsMs) / command.waitsMs;
}

double busyPercentOf(const Command &command)
{
    return 100 * command.busyMs.median() / command.waitsMs;
}

QStringList cellsOf(const Command &command)
{
    const QJsonObject request = QJsonDocument::fromJson(command.request).object();
    const Figures &ms = command.realMs;
    const auto more = [&command](double value) {
        return fixed(value - command.waitsMs, 2);
    };
    const auto percent = [&command](double (&of)(const Command &)) {
        return command.waitsMs > 0 ? fixed(of(command), 2) : QStringLiteral("-");
    };
    return {request.value(QStringLiteral("cmd")).toString(), request.value(QStringLiteral("data")).toString(),
        fixed(command.waitsMs, 0), fixed(ms.median(), 2), more(ms.median()), percent(morePercentOf),
        more(ms.quantile(0)), more(ms.largest()), fixed(command.busyMs.median(), 2), percent(busyPercentOf),
        fixed(command.workMs, 2), QString::number(ms.count())};
}

// How much longer than asked for a wait takes, whatever the service does: the system's share of each "more".
void printSleepCost(bool isQuick)
{
    using namespace std::chrono_literals;
    Figures moreUs;
    for (int round = 0; round < (isQuick ? 50 : 1000); ++round) {
        QElapsedTimer timer;
        timer.start();
        tarnPlatform::systemSleep(5ms);
        moreUs.add(static_cast<double>(timer.nsecsElapsed() - 5000000) / 1e3);
    }
    printNote(
        QStringLiteral("A single wait of 5 ms takes %1 us more (median; p99 %2 us), which is %3 %.")
            .arg(fixed(moreUs.median(), 0), fixed(moreUs.quantile(0.99), 0), fixed(moreUs.median() / 50, 2)));
}

} // namespace

// Prints for each command its time beside the sum of the waits that its sequence consists of.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const bool isQuick = QCoreApplication::arguments().contains(QStringLiteral("--quick"));
    tarnCampaign::CampaignMachine machine;
    makeTool(machine, QStringLiteral("function/EC/IFU_XE.exe"));
    printHeading("Commands: time beside their waits");
    Table table({"command", "data", "waits ms", "median ms", "more ms", "more %", "least more ms",
        "largest more ms", "busy ms", "busy %", "own work ms", "runs"});
    Figures morePercent;
    Figures busyPercent;
    for (Group &group : everyCommand(machine, isQuick)) {
        measure(group, machine, isQuick);
        for (const Command &command : group.commands) {
            table.add(cellsOf(command));
            if (command.waitsMs <= 0)
                continue;
            morePercent.add(morePercentOf(command));
            busyPercent.add(busyPercentOf(command));
        }
    }
    table.print();
    printNote(QStringLiteral(
        "At most %1 % busy (bar: %2 %); with waits that end late at most %3 % more than the waits.")
                  .arg(fixed(busyPercent.largest(), 2))
                  .arg(barPercent)
                  .arg(fixed(morePercent.largest(), 2)));
    printSleepCost(isQuick);
    return 0;
}
