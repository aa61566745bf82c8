// A system whose dialogs are answered by the test.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/NativeDialogs.h"

class FakeNativeDialogs : public platform::NativeDialogs {
public:
    struct Message {
        platform::WindowHandle owner;
        std::string title;
        std::string text;
        platform::MessageButtons buttons;
    };

    bool isAvailable = true;
    bool messageAnswer = true;
    platform::FolderAnswer folderAnswer;
    int stopAt = -1;  ///< the step at which the user stops a work; never when negative
    /// What the user does with a form: changes it and names the button. Without it, gives up.
    std::function<int(platform::Form&)> user;

    std::vector<Message> messages;
    std::vector<platform::Form> forms;  ///< as they were opened
    std::vector<platform::WindowHandle> owners;
    std::vector<std::string> prompts;   ///< of folder choosers, with the folders selected at first
    std::vector<std::string> progress;  ///< "open TITLE", "DONE/TOTAL", "close"

    bool IsAvailable() override { return isAvailable; }
    bool ShowMessage(platform::WindowHandle owner, const std::string& title, const std::string& text,
                     platform::MessageButtons buttons) override {
        messages.push_back({owner, title, text, buttons});
        return messageAnswer;
    }
    platform::FolderAnswer ChooseFolder(platform::WindowHandle owner, const std::string& prompt,
                                        const std::string& initialFolder) override {
        owners.push_back(owner);
        prompts.push_back(prompt + "|" + initialFolder);
        return folderAnswer;
    }
    int ShowForm(platform::WindowHandle owner, platform::Form& form) override {
        owners.push_back(owner);
        forms.push_back(form);
        return user ? user(form) : platform::kFormCancelled;
    }
    std::unique_ptr<platform::ProgressWindow> OpenProgress(platform::WindowHandle owner,
                                                           const std::string& title,
                                                           const std::string& cancelLabel) override {
        owners.push_back(owner);
        progress.push_back("open " + title + ", " + cancelLabel);
        return std::make_unique<Progress>(*this);
    }

private:
    class Progress : public platform::ProgressWindow {
    public:
        explicit Progress(FakeNativeDialogs& dialogs) : mDialogs(dialogs) {}
        ~Progress() override { mDialogs.progress.push_back("close"); }
        bool Show(int32_t done, int32_t total) override {
            mDialogs.progress.push_back(std::to_string(done) + "/" + std::to_string(total));
            return done != mDialogs.stopAt;
        }

    private:
        FakeNativeDialogs& mDialogs;
    };
};
