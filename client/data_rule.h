#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace tarn {

enum class DataKind {
    None,
    Choice,
    // One unsigned byte as decimal text.
    Byte,
    // A file in the user's download folder, by its bare name.
    McuFileName,
    EcFileName,
};

// What a command takes as its "data".
struct DataRule
{
    DataKind kind = DataKind::None;
    // The words of a choice; the service compares them exactly, case included.
    QList<QLatin1StringView> choices {};

    // What is wrong with the data in one plain sentence, or nothing when it is fine.
    [[nodiscard]] std::optional<QString> objection(
        const QString &command, const std::optional<QString> &data) const;
    // The allowed values for a help text.
    [[nodiscard]] QString description() const;
    // The data's place in a usage line: empty, the choices, a range or FILE.
    [[nodiscard]] QString placeholder() const;

private:
    [[nodiscard]] QString joinedChoices(QLatin1StringView separator) const;
    [[nodiscard]] std::optional<QString> choiceObjection(const QString &command, const QString &data) const;
};

} // namespace tarn
