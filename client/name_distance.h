#pragma once

#include <QStringView>

namespace tarnClient {

// How many single-letter slips (a letter too many, missing, wrong, or two swapped) lie between two words.
[[nodiscard]] qsizetype nameDistance(QStringView left, QStringView right);

} // namespace tarnClient
