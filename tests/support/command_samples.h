#pragma once

#include "client/command_catalogue.h"

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

// What the tests know about each command beyond the client's catalogue: data to send, and what may come back.
namespace tarnTest {

// The file that the samples of an update name. A test in which the update is to succeed offers it.
inline constexpr char sampleFirmware[] = "fw.bin";

// What an answer may say under one key.
struct AnswerValues
{
    QLatin1StringView key;
    const char *values; // a regular expression for the whole value
    QLatin1StringView data {}; // for requests with these data only; empty: for all others
    bool onlyAfterSuccess = false;
    // What it says instead when the EC cannot be had; null: one of the values.
    const char *withoutEc = nullptr;
};

// What a command does with the EC beyond its own end.
enum class EcHold {
    None,
    Begins,
    Ends,
    ForGood,
};

struct CommandSample
{
    QLatin1StringView command;
    // Not needed for what the catalogue tells: an outcome, or a command that is answered with its request.
    std::vector<AnswerValues> answers {};
    EcHold hold = EcHold::None;
    // Data of which each, sent in turn, makes the command do something else. Empty: the first that it takes.
    QStringList kinds {};
};

// Every name that changeAccessoryType tells, as a regular expression.
[[nodiscard]] const char *accessoryNames();

// Only of commands that need a row.
[[nodiscard]] const std::vector<CommandSample> &commandSamples();
// Empty for a command that needs none.
[[nodiscard]] const CommandSample &sampleOf(const QString &command);

// Data that the command takes; a null string stands for a request without data.
[[nodiscard]] QStringList goodData(const tarn::CommandEntry &command);
// Data with which nothing is done. Commands that have an outcome answer "failed".
[[nodiscard]] QStringList badData(const tarn::CommandEntry &command);
[[nodiscard]] QStringList kindsOfData(const tarn::CommandEntry &command);

// The accessory that has to be attached; nothing when the command does without.
[[nodiscard]] std::optional<std::uint8_t> accessoryFor(const tarn::CommandEntry &command);

[[nodiscard]] QByteArray requestOf(const tarn::CommandEntry &command, const QString &data);

} // namespace tarnTest
