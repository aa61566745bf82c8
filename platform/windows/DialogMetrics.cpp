#include "DialogMetrics.h"

namespace platform {
namespace {

HFONT FontOf(HWND dialog) {
    return reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0));
}

HFONT MakeBold(HFONT font) {
    LOGFONTW description{};
    GetObjectW(font, sizeof description, &description);
    description.lfWeight = FW_BOLD;
    return CreateFontIndirectW(&description);
}

/// The window's device context with a font chosen into it.
class TextContext {
public:
    TextContext(HWND window, HFONT font)
        : mWindow(window), mContext(GetDC(window)), mPrevious(SelectObject(mContext, font)) {}
    ~TextContext() {
        SelectObject(mContext, mPrevious);
        ReleaseDC(mWindow, mContext);
    }
    TextContext(const TextContext&) = delete;
    TextContext& operator=(const TextContext&) = delete;

    HDC Get() const { return mContext; }

private:
    const HWND mWindow;
    const HDC mContext;
    const HGDIOBJ mPrevious;
};

RECT InPixels(HWND dialog, int horizontal, int vertical) {
    RECT rectangle{0, 0, horizontal, vertical};
    MapDialogRect(dialog, &rectangle);
    return rectangle;
}

}  // namespace

DialogMetrics::DialogMetrics(HWND dialog)
    : mDialog(dialog), mFont(FontOf(dialog)), mBoldFont(MakeBold(mFont)) {}

int DialogMetrics::Horizontal(int units) const {
    return InPixels(mDialog, units, 0).right;
}

int DialogMetrics::Vertical(int units) const {
    return InPixels(mDialog, 0, units).bottom;
}

SIZE DialogMetrics::Measure(const std::wstring& text, HFONT font, int width) const {
    const TextContext context(mDialog, font);
    RECT extent{0, 0, width, 0};
    const UINT wrapping = width > 0 ? DT_WORDBREAK | DT_EDITCONTROL : 0;
    DrawTextW(context.Get(), text.c_str(), static_cast<int>(text.size()), &extent,
              DT_CALCRECT | DT_NOPREFIX | DT_EXPANDTABS | wrapping);
    return {extent.right, extent.bottom};
}

}  // namespace platform
