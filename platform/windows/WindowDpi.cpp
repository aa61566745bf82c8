#include "WindowDpi.h"

namespace platform {
namespace {

constexpr int kDisableAll = 1;  // DDC_DISABLE_ALL, which not all headers have

/// The function of user32.dll by that name; null where the system has none.
template <class Function>
Function UserFunction(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

UINT SystemDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return static_cast<UINT>(dpi);
}

/// What the system has at its own scale, at another.
int Scaled(int size, UINT dpi) {
    return MulDiv(size, static_cast<int>(dpi), static_cast<int>(SystemDpi()));
}

}  // namespace

UINT DpiOf(HWND window) {
    static const auto dpiForWindow = UserFunction<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dpi = dpiForWindow != nullptr ? dpiForWindow(window) : 0;
    return dpi != 0 ? dpi : SystemDpi();
}

int SystemMetricFor(int metric, UINT dpi) {
    static const auto metricForDpi = UserFunction<int(WINAPI*)(int, UINT)>("GetSystemMetricsForDpi");
    return metricForDpi != nullptr ? metricForDpi(metric, dpi) : Scaled(GetSystemMetrics(metric), dpi);
}

LOGFONTW MessageFontFor(UINT dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = Scaled(metrics.lfMessageFont.lfHeight, dpi);
    return metrics.lfMessageFont;
}

void AdjustFrameFor(UINT dpi, HWND window, RECT& inside) {
    static const auto adjustForDpi =
        UserFunction<BOOL(WINAPI*)(RECT*, DWORD, BOOL, DWORD, UINT)>("AdjustWindowRectExForDpi");
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
    const auto extendedStyle = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE));
    if (adjustForDpi != nullptr)
        adjustForDpi(&inside, style, FALSE, extendedStyle, dpi);
    else
        AdjustWindowRectEx(&inside, style, FALSE, extendedStyle);
}

void KeepDialogManagerFromScaling(HWND dialog) {
    static const auto setBehavior = UserFunction<BOOL(WINAPI*)(HWND, int, int)>("SetDialogDpiChangeBehavior");
    if (setBehavior != nullptr)
        setBehavior(dialog, kDisableAll, kDisableAll);
}

}  // namespace platform
