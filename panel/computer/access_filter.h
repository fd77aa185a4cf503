#pragma once

#include "simulator/register_access.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace tarnPanel {

// Which register accesses are shown.
class AccessFilter
{
public:
    enum class Kinds { Both, Reads, Writes };

    AccessFilter() = default;
    // Words of which a name or an address has to have one, in any case; without words all fit.
    AccessFilter(const QString &text, Kinds chosenKinds);

    [[nodiscard]] bool fits(const tarnSimulator::RegisterAccess &access) const;

private:
    [[nodiscard]] bool fitsAddress(std::uint16_t address) const;

    QStringList words;
    Kinds kinds = Kinds::Both;
    // There are a few dozen registers and many accesses.
    mutable QHash<std::uint16_t, bool> known;
};

} // namespace tarnPanel
