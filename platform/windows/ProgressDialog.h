// A window that shows how far a work has come, while its thread does the work.
#pragma once

#include <memory>
#include <optional>

#include "DialogMetrics.h"
#include "DialogWindow.h"
#include "DisabledWindows.h"
#include "platform/NativeDialogs.h"

namespace platform {

class ProgressDialog : public ProgressWindow, private DialogWindow {
public:
    ProgressDialog(HWND owner, const std::wstring& title, std::wstring cancelLabel);
    ~ProgressDialog() override;

    bool Show(int32_t done, int32_t total) override;

private:
    void OnOpen() override;
    void OnScaled() override;
    void OnCommand(int number, int notification) override;
    void AddAll();
    void ShowCount();
    void TakeInput();

    std::optional<DisabledWindows> mHostWindows;
    const std::wstring mCancelLabel;
    std::unique_ptr<DialogMetrics> mMetrics;
    HWND mCount = nullptr;
    HWND mBar = nullptr;
    int32_t mDone = 0;
    int32_t mTotal = 0;
    bool mIsStopped = false;
};

}  // namespace platform
