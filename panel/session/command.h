#pragma once

#include <QString>
#include <QStringList>

namespace tarnPanel {

// A command as somebody would type it beside the programs: "tarnsim" with {"attach", "dock"}.
struct Command
{
    QString program;
    QStringList words;

    friend bool operator==(const Command &, const Command &) = default;
};

} // namespace tarnPanel
