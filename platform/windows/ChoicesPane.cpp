#include "ChoicesPane.h"

#include <algorithm>
#include <utility>

#include "ControlStack.h"
#include "WideText.h"

namespace platform {
namespace {

constexpr int kLargestHeight = 150;  // dialog units, like those below
constexpr int kLabelGap = 2;
constexpr int kRowGap = 6;
constexpr int kScrollStep = 15;

}  // namespace

int ChoicesPane::NaturalWidth(const FormChoices& choices, const DialogMetrics& metrics) {
    int widest = 0;
    for (const FormChoices::Row& row : choices.rows)
        widest = std::max({widest, ControlStack::ListWidth(metrics, ToWide(row.options)),
                           static_cast<int>(metrics.Measure(ToWide(row.label), metrics.Font()).cx)});
    return widest + metrics.ScrollBarWidth();
}

void ChoicesPane::Open(HWND parent, int left, int top, int width) {
    mWidth = width;
    CreatePane(parent, 0);
    SetWindowPos(Handle(), nullptr, left, top, mWidth, mHeight, SWP_NOZORDER | SWP_NOACTIVATE);
}

void ChoicesPane::OnOpen() {
    mContentHeight = AddRows(mWidth);
    mHeight = std::min(mContentHeight, mMetrics.Vertical(kLargestHeight));
    if (mHeight == mContentHeight)
        return;
    RemoveControls();
    mDropDowns.clear();
    SetWindowLongPtrW(Handle(), GWL_STYLE, GetWindowLongPtrW(Handle(), GWL_STYLE) | WS_VSCROLL);
    mContentHeight = AddRows(mWidth - mMetrics.ScrollBarWidth() - mMetrics.Horizontal(kRowGap));
    SCROLLINFO range{
        sizeof range, SIF_RANGE | SIF_PAGE, 0, mContentHeight - 1, static_cast<UINT>(mHeight), 0, 0};
    SetScrollInfo(Handle(), SB_VERT, &range, FALSE);
}

int ChoicesPane::AddRows(int width) {
    ControlStack stack(Handle(), mMetrics, 0, 0, width);
    for (const FormChoices::Row& row : mChoices.rows) {
        if (stack.Bottom() > 0)
            stack.Skip(kRowGap);
        stack.AddText(ToWide(row.label), mMetrics.Font());
        HWND dropDown = nullptr;
        if (!row.options.empty()) {
            stack.Skip(kLabelGap);
            dropDown =
                stack.AddDropDown(static_cast<int>(mDropDowns.size()), ToWide(row.options), row.selected);
        }
        mDropDowns.push_back(dropDown);
    }
    return stack.Bottom();
}

HWND ChoicesPane::FirstControl() const {
    const auto found =
        std::find_if(mDropDowns.begin(), mDropDowns.end(), [](HWND dropDown) { return dropDown != nullptr; });
    return found != mDropDowns.end() ? *found : nullptr;
}

void ChoicesPane::ReadInto(FormChoices& choices) const {
    for (size_t row = 0; row < mDropDowns.size(); ++row) {
        if (mDropDowns[row] != nullptr)
            choices.rows[row].selected =
                static_cast<size_t>(SendMessageW(mDropDowns[row], CB_GETCURSEL, 0, 0));
    }
}

void ChoicesPane::OnCommand(int number, int notification) {
    if (notification == CBN_SETFOCUS && static_cast<size_t>(number) < mDropDowns.size())
        ScrollIntoView(mDropDowns[static_cast<size_t>(number)]);
}

bool ChoicesPane::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    const int step = mMetrics.Vertical(kScrollStep);
    if (message == WM_MOUSEWHEEL) {
        ScrollTo(mOffset - GET_WHEEL_DELTA_WPARAM(wParam) * 3 * step / WHEEL_DELTA);
        return true;
    }
    if (message != WM_VSCROLL)
        return false;
    if (const auto offset = ScrolledBy(LOWORD(wParam)))
        ScrollTo(*offset);
    return true;
}

std::optional<int> ChoicesPane::ScrolledBy(int code) const {
    const int step = mMetrics.Vertical(kScrollStep);
    SCROLLINFO info{sizeof info, SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(Handle(), SB_VERT, &info);
    switch (code) {
        case SB_LINEUP:
            return mOffset - step;
        case SB_LINEDOWN:
            return mOffset + step;
        case SB_PAGEUP:
            return mOffset - mHeight;
        case SB_PAGEDOWN:
            return mOffset + mHeight;
        case SB_THUMBTRACK:
            return info.nTrackPos;
        default:
            return std::nullopt;
    }
}

void ChoicesPane::ScrollTo(int offset) {
    const int previous = std::exchange(mOffset, std::clamp(offset, 0, mContentHeight - mHeight));
    SetScrollPos(Handle(), SB_VERT, mOffset, TRUE);
    ScrollWindowEx(Handle(), 0, previous - mOffset, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
}

// With the label above it, as far as the pane has room for both.
void ChoicesPane::ScrollIntoView(HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&place), 2);
    const int top = place.top - mMetrics.Vertical(kScrollStep);
    if (top < 0)
        ScrollTo(mOffset + top);
    else if (place.bottom > mHeight)
        ScrollTo(mOffset + place.bottom - mHeight);
}

}  // namespace platform
