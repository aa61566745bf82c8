#include "ControlStack.h"

#include <commctrl.h>

#include <algorithm>

namespace platform {
namespace {

// In dialog units, as the system's own dialogs have them.
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kButtonPadding = 14;
constexpr int kCheckMarkWidth = 13;
constexpr int kSmallestCheckBoxHeight = 10;
constexpr int kDropDownHeight = 14;
constexpr int kOptionHeight = 10;
constexpr int kListPadding = 6;
constexpr int kProgressBarHeight = 10;

constexpr size_t kFewestRows = 3;
constexpr size_t kMostRows = 10;

constexpr auto kNothing = static_cast<WPARAM>(-1);

/// In the labels of buttons an "&" would mark a key.
std::wstring WithoutMnemonics(const std::wstring& label) {
    std::wstring shown;
    for (const wchar_t letter : label)
        shown.append(letter == L'&' ? 2 : 1, letter);
    return shown;
}

int WidestOf(const DialogMetrics& metrics, const std::vector<std::wstring>& texts) {
    LONG widest = 0;
    for (const std::wstring& text : texts)
        widest = std::max(widest, metrics.Measure(text, metrics.Font()).cx);
    return widest;
}

void SendText(HWND control, UINT message, const std::wstring& text) {
    SendMessageW(control, message, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

}  // namespace

HWND ControlStack::Add(const wchar_t* windowClass, const std::wstring& text, DWORD style, int number,
                       int height) {
    const HWND control = CreateWindowExW(
        WS_EX_NOPARENTNOTIFY, windowClass, text.c_str(), style | WS_CHILD | WS_VISIBLE, mLeft, mBottom,
        mWidth, height, mDialog, reinterpret_cast<HMENU>(static_cast<INT_PTR>(number)), nullptr, nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(mMetrics.Font()), FALSE);
    mBottom += height;
    return control;
}

void ControlStack::Resize(HWND control, int height) {
    SetWindowPos(control, nullptr, 0, 0, mWidth, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    mBottom += height;
}

HWND ControlStack::AddText(const std::wstring& text, HFONT font) {
    const HWND control = Add(L"STATIC", text, SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, -1,
                             mMetrics.Measure(text, font, mWidth).cy);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return control;
}

HWND ControlStack::AddCheckBox(int number, const std::wstring& label, bool isChecked) {
    const int textWidth = mWidth - mMetrics.Horizontal(kCheckMarkWidth);
    const int textHeight = mMetrics.Measure(label, mMetrics.Font(), textWidth).cy;
    const HWND control = Add(L"BUTTON", WithoutMnemonics(label), BS_AUTOCHECKBOX | BS_MULTILINE | WS_TABSTOP,
                             number, std::max(textHeight, mMetrics.Vertical(kSmallestCheckBoxHeight)));
    SendMessageW(control, BM_SETCHECK, isChecked ? BST_CHECKED : BST_UNCHECKED, 0);
    return control;
}

HWND ControlStack::AddButton(int number, const std::wstring& label, bool isDefault) {
    const DWORD style = isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
    return Add(L"BUTTON", WithoutMnemonics(label), style | WS_TABSTOP, number, ButtonHeight(mMetrics));
}

HWND ControlStack::AddList(int number, const std::vector<std::wstring>& entries,
                           std::optional<size_t> selected, bool isSelectable) {
    const DWORD kind = isSelectable ? LBS_NOTIFY : LBS_NOSEL;
    const HWND list =
        Add(L"LISTBOX", {}, kind | LBS_NOINTEGRALHEIGHT | WS_BORDER | WS_VSCROLL | WS_HSCROLL | WS_TABSTOP,
            number, 0);
    for (const std::wstring& entry : entries)
        SendText(list, LB_ADDSTRING, entry);
    const int extent = WidestOf(mMetrics, entries) + mMetrics.Horizontal(kListPadding);
    const auto rows = static_cast<int>(std::clamp(entries.size(), kFewestRows, kMostRows));
    const int rowHeight = static_cast<int>(SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    const int scrollBarHeight = extent > mWidth - mMetrics.ScrollBarWidth() ? mMetrics.ScrollBarHeight() : 0;
    Resize(list, rows * rowHeight + 2 * GetSystemMetrics(SM_CYBORDER) + scrollBarHeight);
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(extent), 0);
    SendMessageW(list, LB_SETCURSEL, selected ? static_cast<WPARAM>(*selected) : kNothing, 0);
    return list;
}

HWND ControlStack::AddDropDown(int number, const std::vector<std::wstring>& options, size_t selected) {
    const auto rows = static_cast<int>(std::min(options.size(), kMostRows));
    const int openHeight = mMetrics.Vertical(kDropDownHeight + rows * kOptionHeight);
    const HWND dropDown =
        Add(L"COMBOBOX", {}, CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, number, openHeight);
    Take(mMetrics.Vertical(kDropDownHeight) - openHeight);
    for (const std::wstring& option : options)
        SendText(dropDown, CB_ADDSTRING, option);
    SendMessageW(dropDown, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(ListWidth(mMetrics, options)), 0);
    SendMessageW(dropDown, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
    return dropDown;
}

HWND ControlStack::AddProgressBar() {
    return Add(PROGRESS_CLASSW, {}, 0, -1, mMetrics.Vertical(kProgressBarHeight));
}

int ControlStack::ButtonWidth(const DialogMetrics& metrics, const std::wstring& label) {
    const LONG needed = metrics.Measure(label, metrics.Font()).cx + metrics.Horizontal(kButtonPadding);
    return std::max(static_cast<int>(needed), metrics.Horizontal(kButtonWidth));
}

int ControlStack::CheckBoxWidth(const DialogMetrics& metrics, const std::wstring& label) {
    return metrics.Measure(label, metrics.Font()).cx + metrics.Horizontal(kCheckMarkWidth);
}

int ControlStack::ListWidth(const DialogMetrics& metrics, const std::vector<std::wstring>& entries) {
    return WidestOf(metrics, entries) + metrics.Horizontal(kListPadding) + metrics.ScrollBarWidth();
}

int ControlStack::ButtonHeight(const DialogMetrics& metrics) {
    return metrics.Vertical(kButtonHeight);
}

}  // namespace platform
