#include "update_plan.h"

namespace tarn {

namespace {

using L = QLatin1StringView;
using std::chrono::milliseconds;
using std::chrono::seconds;

// The service's five pauses of 1 s before it runs the flasher.
constexpr milliseconds bootLoaderSwitching = seconds(5);

// The service sees an accessory within 1 s after it is attached, and about 4 s after its own start.
constexpr milliseconds accessoryWait = seconds(8);

// The service's pauses before the boot loader, between the writes to the EC and after the flasher last 10 s
// in all. An answer that comes sooner is from an update that ended before the first of these writes.
constexpr milliseconds shortestSwitching = seconds(9);

constexpr UpdatePhase accessoryPhases[] = {
    {milliseconds(0), L("asking for the accessory")},
    {seconds(2), L("waiting for a KVane")},
};
constexpr UpdatePhase versionPhases[] = {
    {milliseconds(0), L("asking for the version")},
    {seconds(3), L("waiting for the EC")},
};
constexpr UpdatePhase mcuPhases[] = {
    {milliseconds(0), L("starting the boot loader")},
    {bootLoaderSwitching, L("flashing, then starting the new firmware")},
};
constexpr UpdatePhase ecPhases[] = {{milliseconds(0), L("running the EC tool")}};

constexpr L nothingTouched("Nothing has been touched.");

constexpr UpdateStep mcuSteps[] = {
    // The version comes first, because a service that cannot reach the EC does not notice a change of
    // accessory. Also, while the EC is reserved the update would wait, with the file already taken and wrong
    // phases shown.
    {
        .command = L("getMcuVersion"),
        .isPrecaution = true,
        .tellsVersion = true,
        .wanted = {},
        .phases = versionPhases,
        .refused = {},
        .untouched = {},
        .goesOnAdvice = nothingTouched,
        .serviceGoneAdvice = nothingTouched,
    },
    {
        .command = L("getAccessoryType"),
        .isPrecaution = true,
        .wanted = L("k_vane"),
        .repeatedFor = accessoryWait,
        .phases = accessoryPhases,
        .refused =
            {
                L("The update needs a KVane, and the service sees \"%1\". Nothing has been touched."),
                L("Attach a KVane and try again."),
            },
        .untouched = {},
        .goesOnAdvice = nothingTouched,
        .serviceGoneAdvice = nothingTouched,
    },
    {
        .command = L("requestMcuUpdate"),
        .takesFile = true,
        .wanted = L("successed"),
        .phases = mcuPhases,
        .refused =
            {
                L("The update failed: the flasher complained three times, or the service saw no KVane; its "
                  "log "
                  "tells which."),
                L("The MCU's firmware may be incomplete now. Its boot loader cannot be damaged: leave the "
                  "KVane "
                  "attached and update again."),
            },
        .untouched =
            {
                L("The service refused the update before it touched the MCU: it found no such file, could "
                  "not "
                  "take it, saw no KVane, or a flasher of an earlier update still runs. Its log tells "
                  "which."),
                L("It looks in the download folder of the user it runs as, on Windows also in that of the "
                  "user "
                  "at the console: run %2 as that user.\n"
                  "If a flasher runs, leave the KVane attached, wait for its end, and update again."),
            },
        .untouchedBefore = shortestSwitching,
        .goesOnAdvice = L("The service goes on with the update. Keep the computer on and the KVane attached, "
                          "and start nothing else before the service's log says \"mcuUpdate Leave |\"."),
        .serviceGoneAdvice =
            L("The MCU may be left in its boot loader or with an incomplete firmware. The boot loader cannot "
              "be "
              "damaged: leave the KVane attached, wait until no stm32flash runs any more, and update again."),
    },
};

// Without requestStartEcUpdate: it would reserve the EC until the service is restarted, also when the service
// then refuses the file. requestEcUpdate reserves it by itself, once settings and file are in place.
constexpr UpdateStep ecSteps[] = {
    {
        .command = L("requestEcUpdate"),
        .takesFile = true,
        .wanted = L("successed"),
        .phases = ecPhases,
        .refused = {},
        .untouched =
            {
                L("The service refused the update before it ran the EC tool: this update has flashed "
                  "nothing."),
                L("It found no such file, could not take it, cannot rewrite function/EC/uiset.ini, or an EC "
                  "tool of an earlier update still runs. Its log tells which.\n"
                  "It looks in the download folder of the user it runs as, on Windows also in that of the "
                  "user "
                  "at the console: run %2 as that user.\n"
                  "If an EC tool runs, keep the computer on, wait for its end, and update again."),
            },
        // Once the tool has run, the answer is never a refusal.
        .untouchedBefore = milliseconds::max(),
        .goesOnAdvice = L("The service goes on with the update. Keep the computer on until the service's log "
                          "says \"ecUpdate Leave |\"; then restart the computer."),
        .serviceGoneAdvice = L("If the EC tool runs, it goes on until it is done: keep the computer on. A "
                               "service that you start "
                               "meanwhile waits for its end by itself; then restart the computer.\n"
                               "If no IFU_XE.exe runs and the log of the service that went away has no "
                               "\"ecUpdate Enter |\", the tool was not started: update again."),
    },
};

constexpr UpdatePlan mcuPlan {
    .kind = FirmwareKind::Mcu,
    .steps = mcuSteps,
    .notice = L("Keep the computer on and the KVane attached. The service reports nothing before the end:\n"
                "the phases shown are those of its schedule."),
    .versionKey = L("mcuVer"),
    .done =
        {
            L("The KVane's MCU now runs version %1."),
            L("If that is not the version of the file, the flasher failed without a complaint:\n"
              "see the service's log and update again."),
        },
    .noVersionText =
        L("The service calls the update done, but the MCU's version cannot be read.\nAsk for it with "
          "getMcuVersion."),
    .nothingRunsVersion = L("0.00"),
    .nothingRuns =
        {
            L("The service calls the update done, but no firmware runs on the MCU (version %1): the flasher "
              "failed without a complaint, or the file is none for a KVane."),
            L("The MCU's boot loader cannot be damaged: leave the KVane attached and update again."),
        },
    .otherVersion =
        {
            L("The service calls the update done, but the MCU's version is \"%1\", not \"%2\": the flasher "
              "failed without a complaint, or the file is of another version."),
            L("The MCU's boot loader cannot be damaged: leave the KVane attached, see the service's log, and "
              "update again."),
        },
    .sameVersionAdvice =
        L("It ran that version before, too. If the file is of another one, the flasher failed without a "
          "complaint:\nsee the service's log and update again."),
};

constexpr UpdatePlan ecPlan {
    .kind = FirmwareKind::Ec,
    .steps = ecSteps,
    .notice = L("Save your work and keep the computer on: the EC tool may shut it down by itself.\n"
                "The service reports nothing before the tool has ended."),
    .versionKey = {},
    .done =
        {
            L("The service is done with the EC tool. Whether it ran and succeeded only the service's log and "
              "the "
              "tool know."),
            L("Restart the computer now: until then the EC stays reserved, and commands that need it wait.\n"
              "Then check that getTarnBatteryNum, getTarnPowerMode and getSmartChargingStatus answer as they "
              "did before."),
        },
    .noVersionText = {},
    .nothingRunsVersion = {},
    .nothingRuns = {},
    .otherVersion = {},
    .sameVersionAdvice = {},
};

} // namespace

const UpdatePlan &updatePlan(FirmwareKind kind)
{
    return kind == FirmwareKind::Mcu ? mcuPlan : ecPlan;
}

} // namespace tarn
