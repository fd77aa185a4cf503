#include "update_plan.h"

namespace tarnClient {

namespace {

using L = QLatin1StringView;
using std::chrono::milliseconds;
using std::chrono::seconds;

// The service's five pauses of 1 s before it runs the flasher.
constexpr milliseconds bootLoaderSwitching = seconds(5);

constexpr UpdatePhase accessoryPhases[] = {{milliseconds(0), L("asking for the accessory")}};
constexpr UpdatePhase mcuPhases[] = {
    {milliseconds(0), L("starting the boot loader")},
    {bootLoaderSwitching, L("flashing, then starting the new firmware")},
};
constexpr UpdatePhase reservingPhases[] = {{milliseconds(0), L("reserving the EC")}};
constexpr UpdatePhase ecPhases[] = {{milliseconds(0), L("running the EC tool")}};

constexpr UpdateStep mcuSteps[] = {
    {
        .command = L("getAccessoryType"),
        .isPrecaution = true,
        .wanted = L("k_vane"),
        .phases = accessoryPhases,
        .refusedText = L("The update needs a KVane, and the service sees \"%1\". Nothing has been touched.\n"
                         "Attach a KVane and try again; a service that has just been started takes some "
                         "seconds to see it.\n--force sends the request all the same."),
        .untouchedText = {},
        .goesOnText = L("Nothing has been touched."),
        .serviceGoneText = L("Nothing has been touched."),
    },
    {
        .command = L("requestMcuUpdate"),
        .takesFile = true,
        .wanted = L("successed"),
        .phases = mcuPhases,
        .refusedText = L("The update failed: the flasher complained three times, or the service saw no "
                         "KVane; its log tells which.\nThe MCU's firmware may be incomplete now. Its boot "
                         "loader cannot be damaged: leave the KVane attached and update again."),
        .untouchedText = L("The service refused the update and did not take the file: the MCU has not been "
                           "touched.\nThe service looks in the download folder of the user it runs as, on "
                           "Windows also in that of the user at the console. Run tarnctl as that user; the "
                           "service's log tells more."),
        .goesOnText = L("The service goes on with the update. Keep the computer on and the KVane attached, "
                        "and start nothing else before the service's log says \"mcuUpdate Leave |\"."),
        .serviceGoneText =
            L("The MCU may be left in its boot loader or with an incomplete firmware. The boot "
              "loader cannot be damaged: leave the KVane attached, wait until no stm32flash "
              "runs any more, and update again."),
    },
};

constexpr UpdateStep ecSteps[] = {
    {
        .command = L("requestStartEcUpdate"),
        .wanted = L("successed"),
        .phases = reservingPhases,
        .refusedText = L("The service could not reserve the EC. Nothing has been flashed.\n"
                         "Restart the service and try again."),
        .untouchedText = {},
        .goesOnText = L("Nothing has been flashed, but the service may reserve the EC all the same: no other "
                        "command reaches it then. Restart the service before you go on."),
        .serviceGoneText = L("Nothing has been flashed."),
    },
    {
        .command = L("requestEcUpdate"),
        .takesFile = true,
        .wanted = L("successed"),
        .phases = ecPhases,
        .refusedText = L("The service refused the update before it ran the EC tool. Nothing has been "
                         "flashed.\nThe service's log tells why. The EC stays reserved: restart the service, "
                         "then try again."),
        .untouchedText = L("The service refused the update before it ran the EC tool, and did not take the "
                           "file. Nothing has been flashed.\nEither it cannot rewrite function/EC/uiset.ini, "
                           "or it looks in another download folder: it knows that of the user it runs as, on "
                           "Windows also that of the user at the console. Its log tells which.\nThe EC stays "
                           "reserved: restart the service, then try again."),
        .goesOnText = L("The service goes on with the update. Keep the computer on until the service's log "
                        "says \"ecUpdate Leave |\"; then restart the computer."),
        .serviceGoneText =
            L("The EC tool may still be running: keep the computer on until no IFU_XE.exe runs "
              "any more. Then start the service and update again before you restart the "
              "computer."),
    },
};

constexpr UpdatePlan mcuPlan {
    .verb = L("update-mcu"),
    .steps = mcuSteps,
    .notice = L("Keep the computer on and the KVane attached. The service reports nothing before the end:\n"
                "the phases shown are those of its schedule."),
    .versionKey = L("mcuVer"),
    .doneText = L("The KVane's MCU now runs version %1."),
    .noVersionText = L("The service calls the update done, but the MCU's version cannot be read."),
    .adviceText = L("If that is not the version of the file, the flasher failed without a complaint:\n"
                    "see the service's log and update again."),
};

constexpr UpdatePlan ecPlan {
    .verb = L("update-ec"),
    .steps = ecSteps,
    .notice = L("Save your work and keep the computer on: the EC tool may shut it down by itself.\n"
                "The service reports nothing before the tool has ended."),
    .versionKey = {},
    .doneText = L("The EC tool has been run. Whether it succeeded only the tool knows."),
    .noVersionText = {},
    .adviceText = L("Restart the computer now: until then the EC stays reserved, and commands that need it "
                    "wait.\nThen check that getTarnBatteryNum, getTarnPowerMode and getSmartChargingStatus "
                    "answer as they did before."),
};

} // namespace

const UpdatePlan &mcuUpdatePlan()
{
    return mcuPlan;
}

const UpdatePlan &ecUpdatePlan()
{
    return ecPlan;
}

} // namespace tarnClient
