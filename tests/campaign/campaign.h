#pragma once

#include "campaign_machine.h"
#include "gpu_watch.h"
#include "random_source.h"

#include <QStringList>

#include <cstdint>

namespace tarnCampaign {

// Runs the monitor's own loop on this thread and puts its random steps into the loop's waits: between two
// cycles whole commands and changes of every kind, within a cycle now and then a change of the machine.
class Campaign
{
public:
    Campaign(CampaignMachine &subject, std::uint64_t seed, int cycles);

    // What broke the rules first, with the steps before; empty when nothing did.
    [[nodiscard]] QString run();

    [[nodiscard]] int cyclesDone() const { return cycle; }
    [[nodiscard]] int requestsSent() const { return requests; }
    [[nodiscard]] int recoveriesTried() const { return recoveries; }

private:
    void onWait(std::chrono::milliseconds duration);
    void betweenCycles();
    void withinACycle();

    [[nodiscard]] bool isQuiet() const { return quietUntil > 0; }
    void checkRules();
    void checkExchanges();
    void checkNotifications();
    void check(const QString &fault);

    void step();
    void note(const QString &text);
    void sendRequest();
    void recover();
    void endQuietTime();
    void switchFault();
    void changeAccessory();
    void changeDevices();
    void changeHost();
    void changeUser();
    void spoilFile();
    void fireEvent();

    CampaignMachine &machine;
    RandomSource random;
    GpuWatch gpu;
    const int cycles;
    int cycle = 0;
    int requests = 0;
    int recoveries = 0;
    bool stepping = false;
    bool hasLooked = false; // the loop is in the wait after a cycle, not in the one before
    bool inUpdateMode = false; // the EC is held for the KVane's MCU, so the loop is paused
    int quietUntil = 0; // the cycle by which a recovery has to have been noticed; 0: none is awaited
    std::uint8_t expectedAccessory = 0;
    bool expectActivation = false;
    bool mayBreakOff = false; // the EC took no bytes, and that exchange is still unfinished
    std::uint64_t channelMistakes = 0;
    int nextNotificationCheck = 0;
    qsizetype notificationsChecked = 0;
    QStringList steps; // the last ones
    QString firstFault;
};

} // namespace tarnCampaign
