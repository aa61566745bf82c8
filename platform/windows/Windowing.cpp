#include "platform/Windowing.h"

#include <windows.h>

#include <array>
#include <memory>
#include <type_traits>

#include "Desktop.h"
#include "WideText.h"

namespace platform {
namespace {

/// MB_SYSTEMMODAL and MB_SETFOREGROUND.
constexpr UINT kNoticeStyle = 0x11000;

struct ModuleCloser {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using OwnedModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleCloser>;

// Nothing may be thrown through the system; without memory the list ends early.
BOOL CALLBACK AppendWindow(HWND window, LPARAM list) noexcept {
    try {
        reinterpret_cast<std::vector<WindowInfo>*>(list)->push_back({window, {}});
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

LPARAM AsArgument(std::vector<WindowInfo>& windows) {
    return reinterpret_cast<LPARAM>(&windows);
}

// Asks no window: one of this process that is busy would never answer.
std::string TitleOf(WindowHandle window) {
    std::array<wchar_t, 1024> title{};
    const int length =
        InternalGetWindowText(static_cast<HWND>(window), title.data(), static_cast<int>(title.size()));
    return ToUtf8({title.data(), static_cast<size_t>(length)});
}

std::vector<WindowInfo> WithTitles(std::vector<WindowInfo> windows) {
    for (WindowInfo& window : windows)
        window.title = TitleOf(window.handle);
    return windows;
}

std::wstring StringResource(HMODULE module, unsigned stringID) {
    const wchar_t* text = nullptr;  // into the module, not ended by a null
    const int length = LoadStringW(module, stringID, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

// Nothing of the module runs for this.
std::wstring StringResourceOfFile(const std::wstring& path, unsigned stringID) {
    const OwnedModule module(
        LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
    return module ? StringResource(module.get(), stringID) : std::wstring();
}

class WindowsWindowing : public Windowing {
public:
    WindowHandle FindTopLevelByClass(const std::string& className) override {
        return FindWindowW(ToWide(className).c_str(), nullptr);
    }
    std::vector<WindowInfo> TopLevelWindows() override {
        std::vector<WindowInfo> windows;
        EnumWindows(AppendWindow, AsArgument(windows));
        return WithTitles(std::move(windows));
    }
    std::vector<WindowInfo> Descendants(WindowHandle window) override {
        std::vector<WindowInfo> windows;
        if (window != nullptr)  // null would stand for the desktop
            EnumChildWindows(static_cast<HWND>(window), AppendWindow, AsArgument(windows));
        return WithTitles(std::move(windows));
    }
    void ShowStringResourceNotice(const std::string& modulePath, unsigned stringID,
                                  const std::string& otherwise) override {
        if (!HasVisibleDesktop())
            return;
        const std::wstring path = ToWide(modulePath);
        const std::wstring text = path.empty() ? std::wstring() : StringResourceOfFile(path, stringID);
        MessageBoxW(nullptr, text.empty() ? ToWide(otherwise).c_str() : text.c_str(), nullptr, kNoticeStyle);
    }
};

}  // namespace

template <>
Windowing& SystemDefault<Windowing>() {
    static WindowsWindowing windowing;
    return windowing;
}

}  // namespace platform
