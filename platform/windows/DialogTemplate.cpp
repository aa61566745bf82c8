#include "DialogTemplate.h"

#include <cstdlib>

namespace platform {
namespace {

constexpr WORD kExtendedVersion = 1;
constexpr WORD kExtendedSignature = 0xFFFF;
constexpr int kPointsPerInch = 72;

struct ScreenContext {
    HDC handle = GetDC(nullptr);
    ScreenContext() = default;
    ~ScreenContext() { ReleaseDC(nullptr, handle); }
    ScreenContext(const ScreenContext&) = delete;
    ScreenContext& operator=(const ScreenContext&) = delete;
};

LOGFONTW MessageFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return metrics.lfMessageFont;
}

WORD PointSize(LONG height) {
    const ScreenContext screen;
    const int points = MulDiv(std::abs(height), kPointsPerInch, GetDeviceCaps(screen.handle, LOGPIXELSY));
    return static_cast<WORD>(points);
}

}  // namespace

// The layout of DLGTEMPLATEEX, which no header declares.
DialogTemplate::DialogTemplate(DWORD style, DWORD extendedStyle, const std::wstring& title) {
    Append(kExtendedVersion);
    Append(kExtendedSignature);
    AppendDouble(0);  // help
    AppendDouble(extendedStyle);
    AppendDouble(style | DS_SETFONT);
    for (const WORD none : {0, 0, 0, 0, 0})  // controls, position, size
        Append(none);
    for (const WORD none : {0, 0})  // menu, window class
        Append(none);
    AppendText(title);
    AppendMessageFont();
}

void DialogTemplate::AppendDouble(DWORD doubleWord) {
    Append(LOWORD(doubleWord));
    Append(HIWORD(doubleWord));
}

void DialogTemplate::AppendText(const std::wstring& text) {
    mWords.insert(mWords.end(), text.begin(), text.end());
    Append(0);
}

void DialogTemplate::AppendMessageFont() {
    const LOGFONTW font = MessageFont();
    Append(PointSize(font.lfHeight));
    Append(static_cast<WORD>(font.lfWeight));
    Append(static_cast<WORD>(font.lfItalic | font.lfCharSet << 8));
    AppendText(font.lfFaceName);
}

}  // namespace platform
