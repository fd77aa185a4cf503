#pragma once

#include <QString>

namespace tarnPlatform {

// A text for the functions of the system, for which it ends at the first NUL character.
inline const wchar_t *wideText(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

} // namespace tarnPlatform
