#pragma once

#include <QLatin1StringView>
#include <QList>

namespace tarn {

// All words that the service takes for a profile or a colour.
[[nodiscard]] QList<QLatin1StringView> profileNames();
[[nodiscard]] QList<QLatin1StringView> colourNames();

} // namespace tarn
