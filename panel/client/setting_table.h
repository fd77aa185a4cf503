#pragma once

#include "panel/client/needs.h"

#include <QList>
#include <QString>

#include <chrono>
#include <optional>

namespace tarnPanel {

// A word of the protocol, and how it is shown.
struct SettingWord
{
    QLatin1StringView word;
    QLatin1StringView label;
};

enum class ControlKind { Choice, Switch, Level };

// A setting of the service that the panel offers.
struct SettingEntry
{
    QLatin1StringView name;
    // As it stands before the control, without a mnemonic.
    QLatin1StringView label;
    QLatin1StringView hint;
    QLatin1StringView setter;
    // Empty: the service does not tell the value.
    QLatin1StringView getter {};
    Needs needs = Needs::Connection;
    ControlKind control = ControlKind::Choice;
    // The values; none: a number from 0 to 255. Of a switch the first is on.
    QList<SettingWord> words {};
    // What can be asked for besides a value.
    QList<SettingWord> orders {};
    // What usually helps when the service could not do it.
    QLatin1StringView whenFailed {};
    // The service needs a moment until it tells what was set.
    std::chrono::milliseconds readBackAfter {0};
};

[[nodiscard]] const QList<SettingEntry> &settingTable();
// Whether the service may give this as the value.
[[nodiscard]] bool isValueOf(const SettingEntry &entry, const QString &word);
// The word as it is shown.
[[nodiscard]] QString shownWord(const SettingEntry &entry, const QString &word);
// The value that holds after `word` was answered with `answer`, for a setting without a getter.
[[nodiscard]] std::optional<QString> valueAfter(
    const SettingEntry &entry, const QString &word, const QString &answer);

} // namespace tarnPanel
