// Sizes in a dialog: dialog units, which grow with the font, and the extent of texts in it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace platform {

/// Around what a dialog holds, in dialog units, as the system's own dialogs have it.
inline constexpr int kMargin = 7;

class DialogMetrics {
public:
    /// In the font of the system's messages at that scale (dots per inch). `dialog` lives longer.
    DialogMetrics(HWND dialog, UINT dpi);

    /// Pixels for dialog units.
    int Horizontal(int units) const { return MulDiv(units, mBase.cx, 4); }
    int Vertical(int units) const { return MulDiv(units, mBase.cy, 8); }

    HFONT Font() const { return mFont.get(); }
    HFONT BoldFont() const { return mBoldFont.get(); }

    int ScrollBarWidth() const;
    int ScrollBarHeight() const;

    /// In pixels, wrapped between words to `width` if that is above 0.
    SIZE Measure(const std::wstring& text, HFONT font, int width = 0) const;

private:
    struct FontDeleter {
        void operator()(HFONT font) const { DeleteObject(font); }
    };
    using OwnedFont = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

    const HWND mDialog;
    const UINT mDpi;
    const OwnedFont mFont;
    const OwnedFont mBoldFont;
    const SIZE mBase;  ///< four units by eight, in pixels
};

}  // namespace platform
