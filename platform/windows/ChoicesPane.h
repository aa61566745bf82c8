// The rows of a FormChoices, in a pane that scrolls when there are many.
#pragma once

#include <optional>
#include <vector>

#include "DialogMetrics.h"
#include "DialogWindow.h"
#include "platform/NativeDialogs.h"

namespace platform {

class ChoicesPane : public DialogWindow {
public:
    /// `choices` and `metrics` live longer.
    ChoicesPane(const FormChoices& choices, const DialogMetrics& metrics)
        : mChoices(choices), mMetrics(metrics) {}

    /// Makes the pane, as high as its rows need and not above a limit; pixels.
    void Open(HWND parent, int left, int top, int width);
    int Height() const { return mHeight; }
    /// What shows all options, scroll bar included.
    static int NaturalWidth(const FormChoices& choices, const DialogMetrics& metrics);

    /// The first drop-down list; null when there is none.
    HWND FirstControl() const;
    /// Brings what was selected into `choices`, which has the same rows.
    void ReadInto(FormChoices& choices) const;

private:
    void OnOpen() override;
    void OnCommand(int number, int notification) override;
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    int AddRows(int width);
    void ScrollTo(int offset);
    void ScrollIntoView(HWND control);
    std::optional<int> ScrolledBy(int code) const;

    const FormChoices& mChoices;
    const DialogMetrics& mMetrics;
    std::vector<HWND> mDropDowns;  ///< one a row; null for a row without options
    int mWidth = 0;
    int mHeight = 0;
    int mContentHeight = 0;
    int mOffset = 0;  ///< pixels scrolled out above
};

}  // namespace platform
