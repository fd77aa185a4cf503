#include "panel/client/needs.h"

#include "panel/client/connection_text.h"
#include "panel/client/service_link.h"

#include <algorithm>
#include <iterator>

namespace tarnPanel {

namespace {

struct NeedRow
{
    Needs needs;
    tarn::Accessory accessory;
    QLatin1StringView text;
};

constexpr NeedRow needRows[] = {
    {Needs::Dock, tarn::Accessory::Dock, QLatin1StringView("Needs a dock")},
    {Needs::GraphicsBox, tarn::Accessory::GraphicsBox, QLatin1StringView("Needs a graphics box")},
    {Needs::KVane, tarn::Accessory::KVane, QLatin1StringView("Needs a KVane")},
};

} // namespace

bool isAttached(Needs needs, const ServiceLink &link)
{
    const auto *const row = std::ranges::find(needRows, needs, &NeedRow::needs);
    return row == std::end(needRows) || link.accessory() == row->accessory;
}

QString objectionTo(Needs needs, const ServiceLink &link)
{
    if (!link.isConnected())
        return QStringLiteral("Not connected.");
    if (!link.updateText().isEmpty())
        return link.updateText();
    if (isAttached(needs, link))
        return {};
    const auto *const row = std::ranges::find(needRows, needs, &NeedRow::needs);
    return QStringLiteral("%1; attached: %2.").arg(row->text, accessoryText(link.accessory()));
}

} // namespace tarnPanel
