// The system's own dialogs: message boxes, the folder chooser, forms made of standard controls, and a window
// that shows how far a work has come.
//
// Texts are UTF-8; an "&" in them is shown as it is. `owner` is the window that a dialog belongs to and that
// takes no input meanwhile; null, a window that is gone and one of another process stand for none. All calls
// come from the owner's thread and return when the user has answered. Each throws only std::bad_alloc.
//
// Linux: a process of its own shows them, "vantorix/PluginCoreDialogs" beside the library that asks, over that
// window of this process which was in front last; `owner` says nothing. The calling thread waits, and draws
// nothing meanwhile. A dialog that nobody has touched for five minutes counts as not answered
// (PLUGINCORE_DIALOG_TIMEOUT, in seconds).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Service.h"
#include "platform/Windowing.h"

namespace platform {

/// What a message is answered with. The labels serve where the system has none of its own: not on Windows.
struct MessageButtons {
    std::string agree;   ///< OK or Yes
    std::string refuse;  ///< No; empty where there is nothing to refuse

    bool IsQuestion() const { return !refuse.empty(); }
};

struct FolderAnswer {
    enum class Outcome {
        kCancelled,
        kChosen,
        kNoPath,  ///< something was chosen that is not a folder of a file system
    };
    Outcome outcome = Outcome::kCancelled;
    std::string path;  ///< full; only where the outcome is kChosen
};

/// A paragraph, wrapped as needed.
struct FormText {
    std::string text;
    bool isHeading = false;
};

struct FormCheckBox {
    std::string label;
    bool isChecked = false;
};

/// A list that scrolls; at most one entry is selected.
struct FormList {
    std::vector<std::string> entries;
    std::optional<size_t> selected;
    bool isSelectable = true;
};

/// Rows, which scroll, each with a label above a drop-down list of options. A row without options is a text.
struct FormChoices {
    struct Row {
        std::string label;
        std::vector<std::string> options;
        size_t selected = 0;
    };
    std::vector<Row> rows;
};

/// What ShowForm answers when the user gives up: Escape, the window's close box, or a button of that number.
inline constexpr int kFormCancelled = 0;

/// Ends the dialog.
struct FormButton {
    int number = kFormCancelled;  ///< the answer; each number is used once in a form
    std::string label;
};

using FormControl = std::variant<FormText, FormCheckBox, FormList, FormChoices, FormButton>;

/// Buttons among the controls are as wide as the form; those in `buttons` stand in a row at its end.
struct Form {
    std::string title;
    std::vector<FormControl> controls;  ///< from top to bottom
    std::vector<FormButton> buttons;
    int defaultButton = kFormCancelled;  ///< pressed by Enter and by a double click in a list
};

/// On the screen until it is destroyed.
class ProgressWindow {
public:
    virtual ~ProgressWindow() = default;

    /// Shows that `done` of `total` (above 0) steps are done, and takes what the user did meanwhile; never
    /// waits. False once the user wants the work to stop.
    virtual bool Show(int32_t done, int32_t total) = 0;
};

class NativeDialogs {
public:
    virtual ~NativeDialogs() = default;

    /// Whether there is a screen that a user may look at. Where there is none, no other function waits:
    /// questions are answered with "no", "cancelled", kFormCancelled, and work goes on.
    virtual bool IsAvailable() = 0;
    /// Why the last question was answered so although nobody answered it, for a log; empty where it was
    /// answered. Told once.
    virtual std::string TakeFailure() = 0;

    /// True for OK and Yes.
    virtual bool ShowMessage(WindowHandle owner, const std::string& title, const std::string& text,
                             const MessageButtons& buttons) = 0;

    /// Lets the user choose a folder or make one. `initialFolder`, a full path, is selected at first; may be
    /// empty.
    virtual FolderAnswer ChooseFolder(WindowHandle owner, const std::string& prompt,
                                      const std::string& initialFolder) = 0;

    /// Answers with the number of the button. What was checked and selected comes out in `form`, unless the
    /// answer is kFormCancelled; then it stays as it went in.
    virtual int ShowForm(WindowHandle owner, Form& form) = 0;

    /// Never null.
    virtual std::unique_ptr<ProgressWindow> OpenProgress(WindowHandle owner, const std::string& title,
                                                         const std::string& cancelLabel) = 0;
};

template <>
NativeDialogs& SystemDefault<NativeDialogs>();

}  // namespace platform
