#pragma once

#include <QList>
#include <QString>

namespace tarnctl {

enum class Verdict { Good, Bad, Unknown };

// A line of the diagnosis.
struct Finding
{
    Verdict verdict;
    QString subject; // what was looked at
    QString text; // what was seen
    QString advice {}; // what to do; empty when there is nothing to do

    bool operator==(const Finding &) const = default;
};

using Findings = QList<Finding>;

// What several lines advise.
namespace advice {
inline const QString asAdministrator = QStringLiteral("run tarnctl as administrator");
inline const QString reinstall = QStringLiteral("run the installer again");
inline const QString seeOperations = QStringLiteral("see \"When something is wrong\" in docs/operations.md");
} // namespace advice

} // namespace tarnctl
