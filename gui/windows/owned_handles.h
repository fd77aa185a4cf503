#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace tarnGui {

struct FontDeleter
{
    void operator()(HFONT font) const { DeleteObject(font); }
};
using OwnedFont = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

struct IconDeleter
{
    void operator()(HICON icon) const { DestroyIcon(icon); }
};
using OwnedIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDeleter>;

} // namespace tarnGui
