#pragma once

#include <QStringView>

namespace tarnctl {

// The number of single-letter slips (a letter too many, missing, wrong, or two swapped) between two words
// (optimal string alignment).
[[nodiscard]] qsizetype nameDistance(QStringView left, QStringView right);

} // namespace tarnctl
