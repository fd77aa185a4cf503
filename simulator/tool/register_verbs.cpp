#include "simulator/clock.h"
#include "simulator/register_table.h"
#include "simulator/tool/tool_text.h"
#include "simulator/tool/verbs.h"
#include "simulator/value_text.h"

#include <chrono>
#include <thread>

namespace tarnSimulator {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds followInterval = 50ms;
constexpr std::uint64_t defaultLast = 20;
constexpr std::int64_t longestFollowS = 86400;
const QString eepromPrefix = QStringLiteral("eeprom:");

// A place in one of the two memories of the EC.
struct Place
{
    bool inEeprom = false;
    std::uint16_t address = 0;

    [[nodiscard]] std::size_t memorySize() const { return inEeprom ? eepromSize : xdataSize; }
};

std::optional<Place> parsePlace(const QString &text)
{
    if (!text.startsWith(eepromPrefix)) {
        const auto address = parseRegister(text);
        return address ? std::optional(Place {false, *address}) : std::nullopt;
    }
    const auto offset = parseByte(text.mid(eepromPrefix.size()).toStdString());
    return offset ? std::optional(Place {true, *offset}) : std::nullopt;
}

ExitCode complainAboutPlace(ToolContext &context, const QString &given)
{
    return complain(context, WrongUsage,
        QStringLiteral(
            "\"%1\" is no place in EC memory; allowed: a register name, an address from 0 to 0xFFFF, "
            "eeprom:0 to eeprom:255")
            .arg(given));
}

std::uint8_t peekAt(const ComputerControl &computer, const Place &place)
{
    return place.inEeprom ? computer.peekEeprom(static_cast<std::uint8_t>(place.address))
                          : computer.peek(place.address);
}

QString byteText(std::uint8_t value)
{
    return QStringLiteral("%1 (%2)").arg(toQString(hexText(value, 2))).arg(value);
}

QString placeText(const Place &place)
{
    return place.inEeprom ? eepromPrefix + toQString(hexText(place.address, 2)) : registerText(place.address);
}

// What `log` was asked to do.
struct LogRequest
{
    std::uint64_t last = defaultLast;
    bool follow = false;
    std::optional<std::uint64_t> followMs; // empty: until the process is stopped
};

std::optional<std::uint64_t> parseCount(const QString &text, std::int64_t maximum)
{
    const auto number = parseNumber(text.toStdString());
    if (!number || *number < 0 || *number > maximum)
        return std::nullopt;
    return static_cast<std::uint64_t>(*number);
}

// Empty when `arguments` are not what the verb takes; `objection` then says why.
std::optional<LogRequest> parseLogRequest(const QStringList &arguments, QString &objection)
{
    LogRequest request;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--follow")) {
            request.follow = true;
        } else if (argument == QLatin1String("--all")) {
            request.last = logEntries;
        } else if (argument == QLatin1String("--last")) {
            const auto count = parseCount(arguments.value(++i), logEntries);
            if (!count) {
                objection = QStringLiteral("--last needs a number from 0 to %1").arg(logEntries);
                return std::nullopt;
            }
            request.last = *count;
        } else if (argument == QLatin1String("--for")) {
            const auto seconds = parseCount(arguments.value(++i), longestFollowS);
            if (!seconds) {
                objection =
                    QStringLiteral("--for needs a number of seconds from 0 to %1").arg(longestFollowS);
                return std::nullopt;
            }
            request.followMs = *seconds * 1000;
        } else {
            objection =
                QStringLiteral("log does not know \"%1\"; allowed: --last N, --all, --follow, --for SECONDS")
                    .arg(argument);
            return std::nullopt;
        }
    }
    if (request.followMs && !request.follow) {
        objection = QStringLiteral("--for goes with --follow");
        return std::nullopt;
    }
    return request;
}

void printReading(QTextStream &out, const LogReading &reading)
{
    if (reading.lost > 0)
        out << "(" << reading.lost << " accesses lost)\n";
    for (const RegisterAccess &access : reading.accesses) {
        const QString seconds = QString::number(static_cast<double>(access.timeMs) / 1000, 'f', 3);
        const char *kind = access.kind == AccessKind::Read ? "read " : "write";
        out << QString::number(access.number).rightJustified(8) << ' ' << seconds.rightJustified(12) << "  "
            << kind << "  " << registerText(access.address) << " = " << byteText(access.value) << '\n';
    }
    out.flush();
}

void followLog(QTextStream &out, const RegisterLog &log, std::uint64_t cursor, const LogRequest &request)
{
    const std::uint64_t startMs = steadyNowMs();
    while (!request.followMs || !hasElapsed(steadyNowMs(), startMs, *request.followMs)) {
        std::this_thread::sleep_for(followInterval);
        const LogReading reading = log.readAfter(cursor);
        printReading(out, reading);
        cursor = reading.cursor;
    }
}

} // namespace

ExitCode peekMemory(ToolContext &context, const QStringList &arguments)
{
    const auto place = parsePlace(arguments.at(0));
    if (!place)
        return complainAboutPlace(context, arguments.at(0));
    const auto most = static_cast<std::int64_t>(place->memorySize() - place->address);
    const auto count = parseCount(arguments.value(1, QStringLiteral("1")), most);
    if (!count || *count == 0) {
        return complain(context, WrongUsage,
            QStringLiteral("\"%1\" is no number of bytes; allowed: 1 to %2").arg(arguments.at(1)).arg(most));
    }
    for (std::uint64_t i = 0; i < *count; ++i) {
        const Place next {place->inEeprom, static_cast<std::uint16_t>(place->address + i)};
        context.out << placeText(next) << " = " << byteText(peekAt(*context.computer, next)) << '\n';
    }
    return Done;
}

ExitCode pokeMemory(ToolContext &context, const QStringList &arguments)
{
    const auto place = parsePlace(arguments.at(0));
    if (!place)
        return complainAboutPlace(context, arguments.at(0));
    const auto value = parseByte(arguments.at(1).toStdString());
    if (!value) {
        return complain(
            context, WrongUsage, QStringLiteral("\"%1\" is no byte; allowed: 0 to 255").arg(arguments.at(1)));
    }
    if (place->inEeprom)
        context.computer->pokeEeprom(static_cast<std::uint8_t>(place->address), *value);
    else
        context.computer->poke(place->address, *value);
    return Done;
}

ExitCode showRegisterLog(ToolContext &context, const QStringList &arguments)
{
    QString objection;
    const auto request = parseLogRequest(arguments, objection);
    if (!request)
        return complain(context, WrongUsage, objection);
    const RegisterLog &log = context.computer->registerLog();
    const std::uint64_t end = log.end();
    std::uint64_t cursor = end;
    if (request->last > 0) {
        const LogReading reading = log.readAfter(end > request->last ? end - request->last : 0);
        printReading(context.out, reading);
        cursor = reading.cursor;
    }
    if (request->follow)
        followLog(context.out, log, cursor, *request);
    return Done;
}

} // namespace tarnSimulator
