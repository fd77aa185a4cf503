#include "simulator/tool/verb_table.h"

#include "simulator/tool/verbs.h"

#include <algorithm>
#include <limits>

namespace tarnSimulator {

namespace {

constexpr int anyNumber = std::numeric_limits<int>::max();

constexpr Verb verbs[] = {
    {"show", "", "overview of the whole machine", "", StateNeed::MustExist, 0, 0, showMachine},
    {"attach", "ACCESSORY", "plug an accessory in",
        "ACCESSORY is one of \"tarnsim list accessories\" or a code from 0 to 255. Its versions are set with "
        "it.\n"
        "An accessory that is attached already is replaced without the link going down in between.",
        StateNeed::MustExist, 1, 1, attachAccessory},
    {"detach", "", "unplug the accessory", "", StateNeed::MustExist, 0, 0, detachAccessory},
    {"get", "NAME", "print a value of the machine", "NAME is one of \"tarnsim list values\".",
        StateNeed::MustExist, 1, 1, getValue},
    {"set", "NAME VALUE", "change a value of the machine",
        "NAME is one of \"tarnsim list values\"; \"tarnsim values\" says what each one takes.",
        StateNeed::MustExist, 2, 2, setValue},
    {"values", "", "all values, what they are now and what may be set", "", StateNeed::MustExist, 0, 0,
        showValues},
    {"press-gpu-key", "", "press the GPU key of the graphics box",
        "Arms event 0x11 with the request bit 0x04 set.", StateNeed::MustExist, 0, 0, pressGpuKey},
    {"event", "CODE [DATA]", "arm an event of the graphics box",
        "The host gets it at its next look at the event register, after those armed before. DATA is 0 if not "
        "given.\n"
        "0x11 GPU key, 0x12 graphics connected, 0x13 ban the GPU.",
        StateNeed::MustExist, 1, 2, armEvent},
    {"devices", "", "display adapters and audio devices of the host", "", StateNeed::MustExist, 0, 0,
        showDevices},
    {"device", "NAME KEY VALUE", "change a device of the host",
        "NAME is one of \"tarnsim devices\". KEY is one of:\n"
        "  description, hardware-id, instance-id   a text of at most 127 characters\n"
        "  kind       display, audio or other\n"
        "  place      computer, box (present while a graphics box is attached) or nowhere\n"
        "  started    on or off\n"
        "  problem    problem code of the configuration manager: 0 none, 22 disabled, 28 no driver, 31, 43, "
        "...",
        StateNeed::MustExist, 3, 3, changeDevice},
    {"add-device", "NAME KIND DESCRIPTION", "add a device to the host",
        "KIND is display, audio or other. It is started and has no problem and no ids until \"device\" gives "
        "it some.",
        StateNeed::MustExist, 3, 3, addDevice},
    {"remove-device", "NAME", "remove a device from the host", "A reset restores the host's own devices.",
        StateNeed::MustExist, 1, 1, removeDevice},
    {"fault", "NAME [on|off|VALUE [SKIP]]", "switch a fault on or off",
        "NAME is one of \"tarnsim list faults\"; \"tarnsim faults\" says what each one does and takes. "
        "Without a\n"
        "value the fault is switched on if it can be \"on\". The faults of one register take its name or "
        "address, and\n"
        "SKIP, the number of accesses of it that still succeed. The fail-device- faults, except "
        "fail-device-list, take\n"
        "a device of \"tarnsim devices\" or on for every device, and SKIP, the number of calls that still "
        "succeed.",
        StateNeed::MustExist, 1, 3, switchFault},
    {"faults", "", "all faults and their state", "", StateNeed::MustExist, 0, 0, showFaults},
    {"clear-faults", "", "switch all faults off", "", StateNeed::MustExist, 0, 0, clearFaults},
    {"peek", "REGISTER [COUNT]", "print EC memory without the EC noticing",
        "REGISTER is a name of \"tarnsim list registers\", an address, or eeprom:OFFSET.",
        StateNeed::MustExist, 1, 2, peekMemory},
    {"poke", "REGISTER VALUE", "change EC memory without the EC noticing",
        "REGISTER is a name of \"tarnsim list registers\", an address, or eeprom:OFFSET. Nothing that a "
        "write by\n"
        "the host would start is started.",
        StateNeed::MustExist, 2, 2, pokeMemory},
    {"log", "[--last N|--all] [--follow [--for SECONDS]]", "completed register accesses",
        "Prints the last 20 accesses, N of them, or all that are kept (4096). With --follow new ones are "
        "printed as\n"
        "they happen, until Ctrl-C or for so many seconds. Columns: number, time in s, kind, address, name, "
        "value.",
        StateNeed::MustExist, 0, anyNumber, showRegisterLog},
    {"reset", "", "power-on condition: nothing attached, no faults, defaults",
        "Makes the state file if there is none. The register log is kept.", StateNeed::IsCreated, 0, 0,
        resetMachine},
    {"firmware", "FILE MAJOR MINOR PATCH [SIZE]", "make a firmware file for the MCU of the KVane",
        "SIZE is 16384 if not given, at least 1024 and a multiple of 4; the MCU holds 131072 bytes. The same "
        "version\n"
        "and size always give the same file.",
        StateNeed::None, 4, 5, makeFirmware},
    {"recording", "FILE [--summary]", "register accesses in a recording of the EC's ports",
        "Prints each access with the number of its first port access and the time in s, then what is odd: "
        "broken\n"
        "sequences, unknown ports, other status bits. With --summary, a paragraph for each register.\n"
        "A file that was cut off by a crash is shown up to there.",
        StateNeed::None, 1, 2, showRecording},
    {"replay", "FILE [--loose] | --off", "answer from a recording instead of the EC's model",
        "Prepares it: start the service then. What was asked while the recording was made is asked again at "
        "the same\n"
        "place, if it stands beside it (ec-TIME.requests). Each access has to be the one recorded next; with "
        "--loose\n"
        "each register gives its recorded values in any order. \"tarnsim show\" tells how far it has come "
        "and what was\n"
        "different, and exits with 0 only when all has been consumed. --off: the model answers again. Both "
        "begin with\n"
        "the next start of the service.",
        StateNeed::IsCreated, 1, 2, replayRecording},
    {"compare", "FILE [--factor N]", "where a recorded EC answers otherwise than the simulated one",
        "Lists wrong values and broken accesses, changes of what the EC measures, and what took more than N "
        "times as\n"
        "long as the simulated EC takes; N is 3 if not given. The exit code is 1 when anything of the first "
        "kind was\n"
        "found, when the file is damaged, and when there was nothing to compare.",
        StateNeed::None, 1, 3, compareRecording},
    {"list", "verbs|accessories|values|faults|registers", "names, one per line", "", StateNeed::None, 1, 1,
        listNames},
    {"help", "[VERB]", "this help, or that of a verb", "", StateNeed::None, 0, 1, showHelp},
};

} // namespace

std::span<const Verb> verbTable()
{
    return verbs;
}

const Verb *findVerb(const QString &name)
{
    const auto found = std::find_if(std::begin(verbs), std::end(verbs),
        [&name](const Verb &verb) { return name == QLatin1String(verb.name); });
    return found == std::end(verbs) ? nullptr : found;
}

} // namespace tarnSimulator
