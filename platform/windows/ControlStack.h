// Makes standard controls below one another in a dialog.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "DialogMetrics.h"

namespace platform {

class ControlStack {
public:
    /// Between `left` and `left + width`, from `top` on; pixels. `dialog` and `metrics` live longer.
    ControlStack(HWND dialog, const DialogMetrics& metrics, int left, int top, int width)
        : mDialog(dialog), mMetrics(metrics), mLeft(left), mBottom(top), mWidth(width) {}

    HWND AddText(const std::wstring& text, HFONT font);
    HWND AddCheckBox(int number, const std::wstring& label, bool isChecked);
    HWND AddButton(int number, const std::wstring& label, bool isDefault);
    HWND AddList(int number, const std::vector<std::wstring>& entries, std::optional<size_t> selected,
                 bool isSelectable);
    HWND AddDropDown(int number, const std::vector<std::wstring>& options, size_t selected);
    HWND AddProgressBar();

    /// As wide as its label needs, and not below the usual width of buttons.
    static int ButtonWidth(const DialogMetrics& metrics, const std::wstring& label);
    /// What the controls need to show the text in one line.
    static int CheckBoxWidth(const DialogMetrics& metrics, const std::wstring& label);
    static int ListWidth(const DialogMetrics& metrics, const std::vector<std::wstring>& entries);
    static int ButtonHeight(const DialogMetrics& metrics);

    /// Leaves room, in dialog units.
    void Skip(int units) { mBottom += mMetrics.Vertical(units); }
    /// Leaves room for a control made elsewhere, in pixels.
    void Take(int height) { mBottom += height; }
    int Left() const { return mLeft; }
    int Bottom() const { return mBottom; }
    int Width() const { return mWidth; }

private:
    HWND Add(const wchar_t* windowClass, const std::wstring& text, DWORD style, int number, int height);
    void Resize(HWND control, int height);

    const HWND mDialog;
    const DialogMetrics& mMetrics;
    const int mLeft;
    int mBottom;
    const int mWidth;
};

}  // namespace platform
