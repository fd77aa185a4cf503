#include "data_rule.h"

#include "tarn/firmware_name.h"

#include <QStringList>

#include <algorithm>

namespace tarn {

namespace {

constexpr int byteMaximum = 255;

bool isByteText(const QString &data)
{
    const bool digitsOnly =
        std::all_of(data.cbegin(), data.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool converted = false;
    const int value = data.toInt(&converted, 10);
    return digitsOnly && converted && value <= byteMaximum;
}

} // namespace

QString DataRule::joinedChoices(QLatin1StringView separator) const
{
    QStringList words;
    for (const QLatin1StringView choice : choices)
        words << choice.toString();
    return words.join(separator);
}

std::optional<QString> DataRule::choiceObjection(const QString &command, const QString &data) const
{
    if (std::find(choices.cbegin(), choices.cend(), data) != choices.cend())
        return std::nullopt;
    const auto sameLetters = std::find_if(choices.cbegin(), choices.cend(),
        [&data](QLatin1StringView choice) { return data.compare(choice, Qt::CaseInsensitive) == 0; });
    if (sameLetters != choices.cend()) {
        return QStringLiteral("%1 takes \"%2\", written exactly so (upper and lower case count).")
            .arg(command, sameLetters->toString());
    }
    return QStringLiteral("%1 does not take \"%2\". Allowed: %3.")
        .arg(command, data, joinedChoices(QLatin1StringView(", ")));
}

std::optional<QString> DataRule::objection(const QString &command, const std::optional<QString> &data) const
{
    if (kind == DataKind::None) {
        if (!data)
            return std::nullopt;
        return QStringLiteral("%1 takes no data, but \"%2\" was given.").arg(command, *data);
    }
    if (!data)
        return QStringLiteral("%1 needs data. Allowed: %2.").arg(command, description());
    if (kind == DataKind::Choice)
        return choiceObjection(command, *data);
    const QString refusal = QStringLiteral("%1 does not take \"%2\". ").arg(command, *data);
    if (kind == DataKind::Byte) {
        return isByteText(*data) ? std::nullopt
                                 : std::optional(refusal + QStringLiteral("Allowed: %1.").arg(description()));
    }
    const std::optional<QString> reason =
        firmwareNameObjection(*data, kind == DataKind::EcFileName ? FirmwareKind::Ec : FirmwareKind::Mcu);
    return reason ? std::optional(refusal + *reason) : std::nullopt;
}

QString DataRule::description() const
{
    switch (kind) {
    case DataKind::None:
        return QStringLiteral("none");
    case DataKind::Choice:
        return joinedChoices(QLatin1StringView(", "));
    case DataKind::Byte:
        return QStringLiteral("a whole number from 0 to %1").arg(byteMaximum);
    case DataKind::McuFileName:
    case DataKind::EcFileName:
        return QStringLiteral("the name of a file in the user's download folder, without a path");
    }
    return {};
}

QString DataRule::placeholder() const
{
    switch (kind) {
    case DataKind::None:
        return {};
    case DataKind::Choice:
        return joinedChoices(QLatin1StringView("|"));
    case DataKind::Byte:
        return QStringLiteral("0-%1").arg(byteMaximum);
    case DataKind::McuFileName:
    case DataKind::EcFileName:
        return QStringLiteral("FILE");
    }
    return {};
}

} // namespace tarn
