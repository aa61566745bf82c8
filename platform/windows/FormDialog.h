// A form as a modal dialog.
#pragma once

#include <memory>
#include <vector>

#include "ChoicesPane.h"
#include "ControlStack.h"
#include "DialogMetrics.h"
#include "DialogWindow.h"
#include "platform/NativeDialogs.h"

namespace platform {

class FormDialog : public DialogWindow {
public:
    /// `form` lives longer.
    explicit FormDialog(Form& form) : mForm(form), mShown(form) {}

    /// As NativeDialogs::ShowForm.
    int Run(HWND owner);

private:
    void OnOpen() override;
    void OnScaled() override;
    void OnCommand(int number, int notification) override;

    void AddAll();
    int Width() const;
    void AddControls(ControlStack& stack);
    void Add(ControlStack& stack, const FormControl& control, int number);
    HWND AddButton(ControlStack& stack, const FormButton& button);
    void AddButtonRow(ControlStack& stack);
    void Finish(int answer);
    void ReadControls(Form& form) const;
    int ControlNumber(int button) const;

    Form& mForm;
    Form mShown;  ///< as the controls were made
    std::unique_ptr<DialogMetrics> mMetrics;
    std::vector<std::unique_ptr<ChoicesPane>> mPanes;  ///< in the order of the form
    std::vector<int> mButtons;                         ///< by the numbers of their controls
    HWND mFirst = nullptr;                             ///< gets the keyboard
};

}  // namespace platform
