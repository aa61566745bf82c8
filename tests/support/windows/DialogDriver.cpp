#include "windows/DialogDriver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cwchar>

#include "TestProcess.h"
#include "WideText.h"
#include "platform/Windowing.h"

namespace {

constexpr std::chrono::seconds kLongestDialog{30};

std::string ClassOf(HWND window) {
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    return platform::ToUtf8(name);
}

bool IsOpenDialog(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId() && IsWindowVisible(window) != 0 && ClassOf(window) == "#32770";
}

HWND FindOpenDialog() {
    for (const auto& window : platform::SystemDefault<platform::Windowing>().TopLevelWindows()) {
        if (IsOpenDialog(static_cast<HWND>(window.handle)))
            return static_cast<HWND>(window.handle);
    }
    return nullptr;
}

HWND WaitForDialog(const std::stop_token& stop) {
    HWND dialog = nullptr;
    while (dialog == nullptr && !stop.stop_requested()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        dialog = FindOpenDialog();
    }
    return dialog;
}

/// Waits for the dialog to be done; one that its actions did not end is closed by force.
void WaitUntilClosed(HWND dialog, const std::stop_token& stop) {
    const auto limit = std::chrono::steady_clock::now() + kLongestDialog;
    while (!stop.stop_requested() && IsWindow(dialog) != 0) {
        if (std::chrono::steady_clock::now() > limit) {
            ADD_FAILURE() << "the dialog '" << TextOf(dialog) << "' was not answered";
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

struct TextExtent {
    LONG width;
    LONG height;
};

/// Wrapped to `width`, in the control's own font.
TextExtent Measure(HWND control, const std::wstring& text, LONG width) {
    const HDC context = GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ previous = SelectObject(context, font);
    RECT extent{0, 0, width, 0};
    DrawTextW(context, text.c_str(), -1, &extent, DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX);
    SelectObject(context, previous);
    ReleaseDC(control, context);
    return {extent.right, extent.bottom};
}

std::wstring WideTextOf(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

bool IsPushButton(const DialogControl& control) {
    const auto kind = GetWindowLongPtrW(control.window, GWL_STYLE) & BS_TYPEMASK;
    return control.windowClass == "Button" && (kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON);
}

/// Push buttons show one line; check boxes and texts wrap.
bool Fits(const DialogControl& control) {
    RECT inside{};
    GetClientRect(control.window, &inside);
    const LONG markWidth = control.windowClass == "Button" && !IsPushButton(control) ? 16 : 0;
    const TextExtent extent = Measure(control.window, WideTextOf(control.window),
                                      IsPushButton(control) ? 100000 : inside.right - markWidth);
    return extent.width + markWidth <= inside.right && extent.height <= inside.bottom;
}

/// Which nobody sees, as that of an empty text, cannot be cut off.
bool IsInsideParent(HWND control) {
    RECT place{}, parent{};
    GetWindowRect(control, &place);
    GetWindowRect(GetParent(control), &parent);
    return place.left >= parent.left && place.right <= parent.right;
}

BOOL CALLBACK AppendControl(HWND window, LPARAM list) {
    if (IsWindowVisible(window) != 0)
        reinterpret_cast<std::vector<DialogControl>*>(list)->push_back(
            {window, ClassOf(window), TextOf(window)});
    return TRUE;
}

}  // namespace

DialogDriver::DialogDriver(std::function<void(HWND dialog)> actions)
    : mThread([actions = std::move(actions)](const std::stop_token& stop) {
          const HWND dialog = WaitForDialog(stop);
          if (dialog == nullptr)
              return;
          actions(dialog);
          WaitUntilClosed(dialog, stop);
      }) {}

DialogDriver::~DialogDriver() = default;

std::string TextOf(HWND window) {
    return platform::ToUtf8(WideTextOf(window));
}

std::vector<DialogControl> ControlsOf(HWND dialog) {
    std::vector<DialogControl> controls;
    EnumChildWindows(dialog, AppendControl, reinterpret_cast<LPARAM>(&controls));
    return controls;
}

std::vector<std::string> TextsOf(HWND dialog, const std::string& windowClass) {
    std::vector<std::string> texts;
    for (const DialogControl& control : ControlsOf(dialog)) {
        if (control.windowClass == windowClass)
            texts.push_back(control.text);
    }
    return texts;
}

HWND FindControl(HWND dialog, const std::string& windowClass, const std::string& text) {
    for (const DialogControl& control : ControlsOf(dialog)) {
        if (control.windowClass == windowClass && (text.empty() || control.text == text))
            return control.window;
    }
    ADD_FAILURE() << "no " << windowClass << " '" << text << "' in '" << TextOf(dialog) << "'";
    return nullptr;
}

std::vector<std::string> EntriesOf(HWND list) {
    std::vector<std::string> entries;
    for (LRESULT index = 0; index < SendMessageW(list, LB_GETCOUNT, 0, 0); ++index) {
        const auto place = static_cast<WPARAM>(index);
        std::wstring text(static_cast<size_t>(SendMessageW(list, LB_GETTEXTLEN, place, 0)) + 1, L'\0');
        SendMessageW(list, LB_GETTEXT, place, reinterpret_cast<LPARAM>(text.data()));
        text.pop_back();
        entries.push_back(platform::ToUtf8(text));
    }
    return entries;
}

HWND FocusOf(HWND dialog) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
    return info.hwndFocus;
}

void PressKey(HWND dialog, WORD key) {
    HWND focus = nullptr;
    EXPECT_TRUE(Eventually([&] { return (focus = FocusOf(dialog)) != nullptr; }))
        << "nothing has the keyboard";
    PostMessageW(focus, WM_KEYDOWN, key, 1);
    PostMessageW(focus, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void PressTab(HWND dialog) {
    const HWND before = FocusOf(dialog);
    PressKey(dialog, VK_TAB);
    EXPECT_TRUE(Eventually([&] { return FocusOf(dialog) != before; })) << "the keyboard stays where it is";
}

void PressButton(HWND dialog, const std::string& text) {
    PostMessageW(FindControl(dialog, "Button", text), BM_CLICK, 0, 0);
}

// A message box with two buttons takes only one of them for an answer.
void Dismiss(HWND dialog) {
    if (const HWND no = GetDlgItem(dialog, IDNO))
        PostMessageW(dialog, WM_COMMAND, IDNO, reinterpret_cast<LPARAM>(no));
    else
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

void Select(HWND list, size_t index) {
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

std::vector<std::string> TextsCutOff(HWND dialog) {
    std::vector<std::string> cut;
    for (const DialogControl& control : ControlsOf(dialog)) {
        const bool isText = control.windowClass == "Static" || control.windowClass == "Button";
        if ((isText && !Fits(control)) || !IsInsideParent(control.window))
            cut.push_back(control.windowClass + " '" + control.text + "'");
    }
    return cut;
}
