#include "DialogMetrics.h"

#include "WindowDpi.h"

namespace platform {
namespace {

HFONT MakeFont(UINT dpi) {
    const LOGFONTW description = MessageFontFor(dpi);
    return CreateFontIndirectW(&description);
}

HFONT MakeBoldFont(UINT dpi) {
    LOGFONTW description = MessageFontFor(dpi);
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

// The width is that of an average letter, as the dialog manager reckons it.
SIZE BaseUnits(HWND dialog, HFONT font) {
    constexpr wchar_t kLetters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int kCount = 52;
    const TextContext context(dialog, font);
    SIZE extent{};
    GetTextExtentPoint32W(context.Get(), kLetters, kCount, &extent);
    TEXTMETRICW metrics{};
    GetTextMetricsW(context.Get(), &metrics);
    return {(extent.cx / (kCount / 2) + 1) / 2, metrics.tmHeight};
}

}  // namespace

DialogMetrics::DialogMetrics(HWND dialog, UINT dpi)
    : mDialog(dialog),
      mDpi(dpi),
      mFont(MakeFont(dpi)),
      mBoldFont(MakeBoldFont(dpi)),
      mBase(BaseUnits(dialog, mFont.get())) {}

int DialogMetrics::ScrollBarWidth() const {
    return SystemMetricFor(SM_CXVSCROLL, mDpi);
}

int DialogMetrics::ScrollBarHeight() const {
    return SystemMetricFor(SM_CYHSCROLL, mDpi);
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
