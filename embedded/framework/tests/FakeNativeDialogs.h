// A system whose dialogs are answered by the test, and that keeps as text what it showed.
#pragma once

#include <sstream>
#include <utility>

#include "platform/NativeDialogs.h"

class FakeNativeDialogs : public platform::NativeDialogs {
public:
    /// What the user does next: the labels of what is clicked, with "|" between them. A check box is switched, an
    /// entry or option selected, a button pressed; "-" selects nothing. Nothing: gives up. To a folder chooser
    /// it is the folder's path, or "?" for something that has none.
    std::string clicks;
    int stopAt = -1;  ///< the step at which the user stops a work; never when negative
    bool isAvailable = true;
    std::string failure;  ///< of the next question
    std::string shown;
    std::vector<platform::WindowHandle> owners;

    bool IsAvailable() override { return isAvailable; }
    std::string TakeFailure() override { return std::exchange(failure, {}); }
    bool ShowMessage(platform::WindowHandle owner, const std::string& title, const std::string& text,
                     const platform::MessageButtons& buttons) override {
        owners.push_back(owner);
        shown += title + "\n" + text + "\n<" + buttons.agree + ">" +
                 (buttons.IsQuestion() ? " <" + buttons.refuse + ">\n" : "\n");
        return clicks == buttons.agree;
    }
    platform::FolderAnswer ChooseFolder(platform::WindowHandle owner, const std::string& prompt,
                                        const std::string& initialFolder) override {
        using Outcome = platform::FolderAnswer::Outcome;
        owners.push_back(owner);
        shown += prompt + "\n" + initialFolder + "\n";
        if (clicks == "?")
            return {Outcome::kNoPath, {}};
        return {clicks.empty() ? Outcome::kCancelled : Outcome::kChosen, clicks};
    }
    int ShowForm(platform::WindowHandle owner, platform::Form& form) override {
        owners.push_back(owner);
        shown += form.title + "\n";
        for (const auto& control : form.controls)
            shown += Described(control) + "\n";
        for (const platform::FormButton& button : form.buttons)
            shown += Described(button) + (button.number == form.defaultButton ? " by default\n" : "\n");
        std::istringstream labels(clicks);
        int pressed = platform::kFormCancelled;
        for (std::string label; std::getline(labels, label, '|');) {
            for (auto& control : form.controls)
                Click(control, label, pressed);
            for (const platform::FormButton& button : form.buttons)
                pressed = button.label == label ? button.number : pressed;
        }
        return pressed;
    }
    std::unique_ptr<platform::ProgressWindow> OpenProgress(platform::WindowHandle owner,
                                                           const std::string& title,
                                                           const std::string& cancelLabel) override {
        owners.push_back(owner);
        shown += "open " + title + " <" + cancelLabel + ">\n";
        return std::make_unique<Progress>(*this);
    }

private:
    class Progress : public platform::ProgressWindow {
    public:
        explicit Progress(FakeNativeDialogs& dialogs) : mDialogs(dialogs) {}
        ~Progress() override { mDialogs.shown += "close\n"; }
        bool Show(int32_t done, int32_t total) override {
            mDialogs.shown += std::to_string(done) + "/" + std::to_string(total) + "\n";
            return done != mDialogs.stopAt;
        }

    private:
        FakeNativeDialogs& mDialogs;
    };

    static std::string Described(const platform::FormButton& button) { return "<" + button.label + ">"; }
    static std::string Described(const platform::FormControl& control) {
        std::string text;
        if (const auto* paragraph = std::get_if<platform::FormText>(&control))
            text = paragraph->text;
        else if (const auto* box = std::get_if<platform::FormCheckBox>(&control))
            text = (box->isChecked ? "[x] " : "[ ] ") + box->label;
        else if (const auto* button = std::get_if<platform::FormButton>(&control))
            text = Described(*button);
        else if (const auto* list = std::get_if<platform::FormList>(&control))
            for (size_t index = 0; index < list->entries.size(); ++index)
                text += (list->selected == index ? "* "
                         : list->isSelectable    ? "o "
                                                 : "- ") +
                        list->entries[index] + "\n";
        else
            for (const auto& row : std::get<platform::FormChoices>(control).rows) {
                text += row.label;
                for (size_t index = 0; index < row.options.size(); ++index)
                    text += (row.selected == index ? " *" : " o") + row.options[index];
                text += "\n";
            }
        return text;
    }
    static void Select(const std::vector<std::string>& labels, const std::string& label, auto& selected) {
        for (size_t index = 0; index < labels.size(); ++index) {
            if (labels[index] == label)
                selected = index;
        }
    }
    static void Click(platform::FormControl& control, const std::string& label, int& pressed) {
        if (auto* box = std::get_if<platform::FormCheckBox>(&control)) {
            box->isChecked = box->isChecked != (box->label == label);
        } else if (auto* list = std::get_if<platform::FormList>(&control)) {
            Select(list->entries, label, list->selected);
            if (label == "-")
                list->selected.reset();
        } else if (auto* choices = std::get_if<platform::FormChoices>(&control)) {
            for (auto& row : choices->rows)
                Select(row.options, label, row.selected);
        } else if (auto* button = std::get_if<platform::FormButton>(&control)) {
            pressed = button->label == label ? button->number : pressed;
        }
    }
};
