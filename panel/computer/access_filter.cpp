#include "panel/computer/access_filter.h"

#include "simulator/tool/tool_text.h"

#include <algorithm>

namespace tarnPanel {

using tarnSimulator::AccessKind;

AccessFilter::AccessFilter(const QString &text, Kinds chosenKinds)
    : words(text.split(u' ', Qt::SkipEmptyParts))
    , kinds(chosenKinds)
{ }

bool AccessFilter::fits(const tarnSimulator::RegisterAccess &access) const
{
    if (kinds != Kinds::Both && (kinds == Kinds::Reads) != (access.kind == AccessKind::Read))
        return false;
    if (words.isEmpty())
        return true;
    auto place = known.constFind(access.address);
    if (place == known.constEnd())
        place = known.insert(access.address, fitsAddress(access.address));
    return *place;
}

bool AccessFilter::fitsAddress(std::uint16_t address) const
{
    const QString text = tarnSimulator::registerText(address);
    return std::ranges::any_of(
        words, [&text](const QString &word) { return text.contains(word, Qt::CaseInsensitive); });
}

} // namespace tarnPanel
