#include "help_text.h"

#include "client/reply_deadline.h"

#include <QStringList>

#include <algorithm>

namespace tarnctl {

namespace {

struct Topic
{
    QLatin1StringView word;
    QLatin1StringView text;
};

constexpr QLatin1StringView usage(R"(Usage: tarnctl [OPTIONS] COMMAND [DATA]
       tarnctl [OPTIONS] watch
       tarnctl [OPTIONS] raw TEXT
       tarnctl [OPTIONS] update-mcu|update-ec FILE
       tarnctl [OPTIONS] diagnose
       tarnctl record on|off
       tarnctl [OPTIONS] check-computer [STEP...]
       tarnctl help [COMMAND])");

constexpr QLatin1StringView optionsAndCodes(R"(Options:
  --json             print each answer as one line of JSON
  --timeout SECONDS  how long to wait for an answer (default: depends on the command)
  --pipe NAME        the service's pipe (default: tarnPipe)
  --force            send commands and data that tarnctl does not know; update-mcu, update-ec: skip the checks of
                     user, EC and accessory
  -v, --verbose      show on the error output what else arrives
  --count N          watch, raw: end after N notifications (raw: messages)
  --for SECONDS      watch, raw: end after this time
  --reconnect        watch: wait for the service when it is not there, and come back after another client
  --expect VERSION   update-mcu: it has failed unless this version runs afterwards
  --output FILE      diagnose: write a report to send to somebody
  --connect          diagnose: ask the service as well
  --serial-numbers   diagnose, check-computer: leave the serial numbers in the report
  --without-recording  check-computer: go on although the service records nothing
  -h, --help         this text
  --version          the version of tarnctl

Exit codes: 0 done, 1 the service answered "failed", an update did not do what it should or something is bad, 2 wrong
usage, 3 no service, 4 no answer in time.)");

constexpr QLatin1StringView watchText(R"(tarnctl watch

Prints the service's notifications with their local time until Ctrl+C, --count N notifications or --for SECONDS.
With both, it ends with code 4 if fewer have come in time; also if typed commands are left unsent or unanswered.

The service serves one client at a time: another tarnctl meanwhile takes the notifications away. With --reconnect
watch asks for them when it has heard nothing for a minute, which takes the service from a program that is still
connected, so end it before an update. Type commands right here, or pipe them in, one per line:
  getMcuVersion          any command, with its data
  help [COMMAND]         what can be typed
  reconnect              connect again at once after another client has come and gone
  quit                   end
Each command is sent when the one before it has been answered. At the end of a piped input watching goes on.

Example: tarnctl watch --count 1 --for 60)");

constexpr QLatin1StringView rawText(R"(tarnctl raw TEXT

Sends TEXT exactly as given, without checks, and prints every message that comes back as it comes. Ends with the
first message that holds all fields of the request, after --count N messages, or after --for SECONDS; with code 4 if
they do not come in time. TEXT "-" takes the standard input up to its end.

Example: tarnctl raw '{"cmd":"getMcuVersion","mine":7}')");

constexpr QLatin1StringView helpText(R"(tarnctl help [COMMAND]

Explains tarnctl or one of its commands.

Example: tarnctl help setDockLedStatus)");

constexpr QLatin1StringView commandsText(R"(tarnctl commands

Lists the names of the service's commands, one per line.

Example: tarnctl commands)");

constexpr QLatin1StringView updateMcuText(R"(tarnctl update-mcu [--expect VERSION] FILE

Flashes FILE into the MCU of the attached KVane: puts a copy of it into the download folder, from where the service
takes it away, sees that the EC can be reached, waits some seconds for a KVane, sends requestMcuUpdate and waits. It
takes about 10 s and the flasher's time. Keep the computer on and the KVane attached.

The service reports nothing before the end. Meanwhile the error output shows the phases of its schedule. Ctrl+C ends
tarnctl, not the update. An update that failed can be repeated: the MCU's boot loader stays.

The service reports success when the flasher prints no error. So --expect compares the version that runs at the end,
given as getMcuVersion does, such as 1.24. Version 0.00 means that nothing runs, which is a failure anyway.

With --force the checks of user, EC and accessory are skipped. A FILE that lies in the download folder itself is
moved, not copied. With --json the standard output is the last answer as it came, and no progress is shown.

Exit codes: 0 done, 1 no KVane, "failed" or not the right version, 2 FILE cannot be used or another user sits at the
console, 3 no service, 4 no answer in time or interrupted.

Example: tarnctl update-mcu --expect 1.24 kvane-1.24.bin)");

constexpr QLatin1StringView updateEcText(R"(tarnctl update-ec FILE

Flashes FILE into the EC: puts a copy of it into the download folder, from where the service takes it away, sends
requestEcUpdate, and waits until the EC tool has ended. The tool may shut the computer down.

Once the tool runs, nothing else reaches the EC. Commands that need it wait until the service is restarted; after an
update restart the computer. The service does not check whether the update succeeded.

FILE must have no name that holds a setting of the EC tool, such as the "IO" of "BIOS.bin": the update after this one
could not tell the tool its file. A FILE that lies in the download folder itself is moved, not copied. With --json the
standard output is the last answer as it came, and no progress is shown.

Exit codes: 0 the tool has been run, 1 "failed" (it has not), 2 FILE cannot be used or another user sits at the
console, 3 no service, 4 no answer in time or interrupted; the service then goes on.

Example: tarnctl update-ec ec-0105.bin)");

constexpr QLatin1StringView diagnoseText(R"(tarnctl diagnose [--output FILE [--serial-numbers]] [--connect]

Looks at what the service needs and prints a line for each: good, bad or unknown, and what to do. Works also when the
service does not run or hangs. As administrator it sees more.

It opens no connection to the service, which would silence the application that uses it. With --connect it does, and
asks for the accessory; a connected application then has to connect again.

With --output it writes a text file to send to somebody: the same lines, versions of the system, the settings files and
the last 2,000 lines of the log; no serial numbers unless --serial-numbers is given. It does name folders, and so
perhaps users. FILE may be there already only if it is an earlier report.

Exit codes: 0 nothing is bad, 1 something is, 2 the report could not be written.

Example: tarnctl diagnose --output report.txt)");

constexpr QLatin1StringView checkText(R"(tarnctl check-computer [STEP...]

Leads you through a check of a real computer with its accessories, for somebody who looks for a fault without having the
computer. First it only reads; then, after a yes, it switches lights, power mode, smart charging and power profiles and
puts back what was there before; at the end it asks you to plug in what you have. It never touches firmware.

The service has to record: "tarnctl record on" and a restart of the service, or --without-recording. It serves one client,
so close the application before. On Windows run it as administrator.

Each step says what is expected and what came. An answer that takes more than 5 s is late, and so not as expected. At the
end, also after Ctrl+C, it writes what it asked (ec-TIME.requests) and a report (ec-TIME.report.txt) beside the recording.
The report has no serial numbers unless --serial-numbers is given.

STEP is the name of a step, such as versions or plug-dock: then only those are run. A wrong name lists them all.

Exit codes: 0 all that ran was as expected, 1 something was not, 2 nothing could be checked or reported, 3 no service, 4 the
service stopped talking, or Ctrl+C.

Example: tarnctl check-computer)");

constexpr QLatin1StringView recordText(R"(tarnctl record on|off

Switches the recording of the EC's ports on or off, for somebody who looks for a fault without having the computer. The
service looks at the switch when it starts, so restart it afterwards. It then writes ec-TIME.recording into its folder
"function": each access to the EC with its time. A file has at most 64 MiB, and the last two are kept. The serial number
of an attached KVane is among the accesses when the service reads it.

It needs the right to write into that folder: on Windows run it as administrator.

Exit codes: 0 done, 2 the switch could not be changed.

Example: tarnctl record on)");

constexpr Topic topics[] = {
    {QLatin1StringView("watch"), watchText},
    {QLatin1StringView("raw"), rawText},
    {QLatin1StringView("update-mcu"), updateMcuText},
    {QLatin1StringView("update-ec"), updateEcText},
    {QLatin1StringView("diagnose"), diagnoseText},
    {QLatin1StringView("check-computer"), checkText},
    {QLatin1StringView("record"), recordText},
    {QLatin1StringView("help"), helpText},
    {QLatin1StringView("commands"), commandsText},
};

constexpr int nameColumnWidth = 31;

QString commandTable()
{
    QStringList lines;
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue()) {
        lines << QStringLiteral("  ") + entry.name.toString().leftJustified(nameColumnWidth)
                + entry.summary.toString();
    }
    return lines.join(u'\n');
}

QString joinedKeys(const tarn::CommandEntry &entry)
{
    QStringList keys;
    for (const QLatin1StringView key : entry.answerKeys)
        keys << u'"' + key.toString() + u'"';
    return keys.isEmpty() ? QStringLiteral("none") : keys.join(QLatin1StringView(", "));
}

} // namespace

QString usageText()
{
    return usage.toString();
}

QString generalHelp()
{
    return QStringLiteral(
        "%1\n\nSends commands to Tarn Service and prints its answers.\n\n%2\n\nCommands of the "
        "service (\"tarnctl help COMMAND\" explains one):\n%3\n\nCommands of tarnctl:\n"
        "  watch      show notifications and take typed commands\n"
        "  raw        send bytes as they are\n"
        "  update-mcu flash a file into the KVane's MCU\n"
        "  update-ec  flash a file into the EC\n"
        "  diagnose   look at what the service needs, and write a report\n"
        "  check-computer  lead you through a check of a real computer\n"
        "  record     switch the recording of the EC's ports on or off\n"
        "  commands   list the service's commands, one per line\n"
        "  help       explain a command")
        .arg(usageText(), optionsAndCodes.toString(), commandTable());
}

QString commandHelp(const tarn::CommandEntry &entry)
{
    const QString placeholder = entry.data.placeholder();
    QStringList lines {
        (QStringLiteral("tarnctl ") + entry.name + u' ' + placeholder).trimmed(),
        {},
        entry.summary.toString() + u'.',
        {},
        QStringLiteral("Concerns: ") + entry.concerns,
        QStringLiteral("Data:     ") + entry.data.description(),
        QStringLiteral("Answer:   ") + entry.answerMeaning,
        QStringLiteral("In JSON:  ") + joinedKeys(entry),
        QStringLiteral("Waits:    up to ") + tarn::durationText(entry.timeout),
        QStringLiteral("Example:  ") + entry.example,
    };
    if (!entry.note.isEmpty())
        lines << QString() << entry.note.toString();
    return lines.join(u'\n');
}

std::optional<QString> topicHelp(const QString &topic)
{
    if (const tarn::CommandEntry *entry = tarn::findCommand(topic))
        return commandHelp(*entry);
    const auto *const found = std::find_if(
        std::begin(topics), std::end(topics), [&topic](const Topic &known) { return known.word == topic; });
    if (found == std::end(topics))
        return std::nullopt;
    return found->text.toString();
}

QString typingHelp()
{
    return QStringLiteral("Type one of these, or help COMMAND, reconnect, quit:\n") + commandTable();
}

QString commandNames()
{
    QStringList names;
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue())
        names << entry.name.toString();
    return names.join(u'\n');
}

} // namespace tarnctl
