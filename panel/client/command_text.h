#pragma once

#include <QString>
#include <QStringList>

namespace tarnPanel {

// A command as it was typed: the first word, and the rest as its data.
struct TypedText
{
    QString name;
    // Null: none.
    QString data;
};

[[nodiscard]] TypedText typedText(const QString &line);
// Why the service would not carry it out; empty when nothing speaks against it.
[[nodiscard]] QString objectionTo(const TypedText &typed);
// What the command does, what it takes and what to beware of; empty for an unknown one.
[[nodiscard]] QString summaryOf(const QString &name);
// The whole lines that a line may become.
[[nodiscard]] QStringList completionsOf(const QString &line);

} // namespace tarnPanel
