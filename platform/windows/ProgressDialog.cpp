#include "ProgressDialog.h"

#include <commctrl.h>

#include "ControlStack.h"
#include "Desktop.h"

namespace platform {
namespace {

// In dialog units.
constexpr int kGap = 4;
constexpr int kWidth = 200;

/// Takes the widest count that is likely, so that the text never outgrows its place.
constexpr wchar_t kRoomForCount[] = L"0000000 / 0000000";

void EnsureProgressBars() {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&controls);
}

}  // namespace

ProgressDialog::ProgressDialog(HWND owner, const std::wstring& title, std::wstring cancelLabel)
    : mCancelLabel(std::move(cancelLabel)) {
    mHostWindows.emplace(nullptr);
    EnsureProgressBars();
    CreateModeless(owner, title);
    ShowWindow(Handle(), SW_SHOW);
}

// The host's windows take input again before this one goes, or another program's window would come to the front.
ProgressDialog::~ProgressDialog() {
    mHostWindows.reset();
}

void ProgressDialog::OnOpen() {
    AddAll();
    CenterOverOwner(Handle());
}

void ProgressDialog::OnScaled() {
    RemoveControls();
    AddAll();
    ShowCount();
}

void ProgressDialog::AddAll() {
    mMetrics = std::make_unique<DialogMetrics>(Handle(), Dpi());
    const int left = mMetrics->Horizontal(kMargin);
    const int width = mMetrics->Horizontal(kWidth);
    ControlStack stack(Handle(), *mMetrics, left, mMetrics->Vertical(kMargin), width);
    mCount = stack.AddText(kRoomForCount, mMetrics->Font());
    stack.Skip(kGap);
    mBar = stack.AddProgressBar();
    stack.Skip(kMargin);
    const int buttonWidth = ControlStack::ButtonWidth(*mMetrics, mCancelLabel);
    ControlStack button(Handle(), *mMetrics, left + width - buttonWidth, stack.Bottom(), buttonWidth);
    SetFocus(button.AddButton(IDCANCEL, mCancelLabel, true));
    button.Skip(kMargin);
    Resize(left + width + left, button.Bottom());
}

void ProgressDialog::OnCommand(int number, int) {
    if (number == IDCANCEL)
        mIsStopped = true;
}

bool ProgressDialog::Show(int32_t done, int32_t total) {
    mDone = done;
    mTotal = total;
    ShowCount();
    TakeInput();
    UpdateWindow(Handle());
    return !mIsStopped;
}

void ProgressDialog::ShowCount() {
    SetWindowTextW(mCount, (std::to_wstring(mDone) + L" / " + std::to_wstring(mTotal)).c_str());
    SendMessageW(mBar, PBM_SETRANGE32, 0, mTotal);
    SendMessageW(mBar, PBM_SETPOS, static_cast<WPARAM>(mDone), 0);
}

// Of this window alone: the host's own messages would let it call back in the middle of the work. The one that ends
// the host comes along whatever is asked for, and is the host's.
void ProgressDialog::TakeInput() {
    MSG message{};
    while (Handle() != nullptr && PeekMessageW(&message, Handle(), 0, 0, PM_REMOVE) != 0) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            mIsStopped = true;
            return;
        }
        if (IsDialogMessageW(Handle(), &message) == 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

}  // namespace platform
