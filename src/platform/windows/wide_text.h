#pragma once

#include <QString>

namespace tarnPlatform {

// A text as the system takes it; it ends at the first NUL character, should it hold one.
inline const wchar_t *wideText(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

} // namespace tarnPlatform
