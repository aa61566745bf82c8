// Sizes in a dialog: dialog units, which grow with the font, and the extent of texts in it.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace platform {

class DialogMetrics {
public:
    /// `dialog` lives longer.
    explicit DialogMetrics(HWND dialog);

    /// Pixels for dialog units.
    int Horizontal(int units) const;
    int Vertical(int units) const;

    HFONT Font() const { return mFont; }
    HFONT BoldFont() const { return mBoldFont.get(); }

    /// In pixels, wrapped between words to `width` if that is above 0.
    SIZE Measure(const std::wstring& text, HFONT font, int width = 0) const;

private:
    struct FontDeleter {
        void operator()(HFONT font) const { DeleteObject(font); }
    };

    const HWND mDialog;
    const HFONT mFont;
    const std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter> mBoldFont;
};

}  // namespace platform
