// The real dialogs, used by a second thread as by a user.
#include "platform/NativeDialogs.h"

#include <gmock/gmock.h>
#include <windows.h>
// After windows.h, which it needs.
#include <commctrl.h>

#include "platform/Folders.h"
#include "windows/DialogDriver.h"

namespace {

using namespace platform;
using testing::ElementsAre, testing::IsEmpty;

NativeDialogs& Dialogs() {
    return SystemDefault<NativeDialogs>();
}

class NativeDialogsTest : public testing::Test {
protected:
    NativeDialogsTest()
        : mOwner(CreateWindowExW(0, L"STATIC", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 900, 700,
                                 nullptr, nullptr, nullptr, nullptr)),
          mPalette(CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"Palette", WS_POPUP | WS_VISIBLE, 0, 0, 90,
                                   90, mOwner, nullptr, nullptr, nullptr)),
          mDisabled(CreateWindowExW(0, L"STATIC", L"Disabled", WS_POPUP | WS_VISIBLE | WS_DISABLED, 0, 90, 90,
                                    90, nullptr, nullptr, nullptr, nullptr)) {
        SetActiveWindow(mOwner);
    }
    ~NativeDialogsTest() override {
        EXPECT_TRUE(IsWindowEnabled(mOwner)) << "the host can be used again";
        EXPECT_TRUE(IsWindowEnabled(mPalette));
        EXPECT_FALSE(IsWindowEnabled(mDisabled)) << "not by us";
        EXPECT_EQ(GetActiveWindow(), mOwner);
        for (const HWND window : {mDisabled, mPalette, mOwner})
            DestroyWindow(window);
    }
    NativeDialogsTest(const NativeDialogsTest&) = delete;
    NativeDialogsTest& operator=(const NativeDialogsTest&) = delete;

    int Show(Form& form, const std::function<void(HWND)>& actions) const {
        const DialogDriver user([&](HWND dialog) {
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), mOwner);
            ExpectModal();
            EXPECT_THAT(TextsCutOff(dialog), IsEmpty());
            actions(dialog);
        });
        return Dialogs().ShowForm(mOwner, form);
    }

    void ExpectModal() const {
        EXPECT_FALSE(IsWindowEnabled(mOwner));
        EXPECT_FALSE(IsWindowEnabled(mPalette));
    }

    const HWND mOwner;
    const HWND mPalette;
    const HWND mDisabled;
};

/// As the system does when a dialog comes to another screen.
void MoveToScreenOf(int dpi, HWND dialog) {
    RECT place{40, 50, 400, 500};
    SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

LOGFONTW FontOf(HWND control) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

Form FormWith(platform::FormControl control) {
    Form form{"Überschrift 字", {}, {{1, "OK"}, {kFormCancelled, "Abbrechen & zurück"}}, 1};
    form.controls.emplace_back(std::move(control));
    return form;
}

TEST_F(NativeDialogsTest, AMessageHasItsTextsAndAnswersWithItsButton) {
    const auto ask = [this](const MessageButtons& buttons, WORD key) {
        const DialogDriver user([&](HWND dialog) {
            EXPECT_EQ(TextOf(dialog), "Größe & 字");
            EXPECT_THAT(TextsOf(dialog, "Static"), testing::Contains("Was & wie? 😀"));
            EXPECT_EQ(GetWindow(dialog, GW_OWNER), mOwner);
            ExpectModal();
            PressKey(dialog, key);
        });
        return Dialogs().ShowMessage(mOwner, "Größe & 字", "Was & wie? 😀", buttons);
    };
    EXPECT_TRUE(ask({"OK", ""}, VK_RETURN));
    EXPECT_FALSE(ask({"Yes", "No"}, VK_RETURN)) << "Enter does not agree to anything";
    const DialogDriver user([&](HWND dialog) {
        PostMessageW(dialog, WM_COMMAND, IDYES, reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDYES)));
    });
    EXPECT_TRUE(Dialogs().ShowMessage(mOwner, "Title", "Text", {"Yes", "No"}));
}

TEST_F(NativeDialogsTest, CheckBoxesComeBackAsTheyWereLeftUnlessTheUserGivesUp) {
    for (const bool isConfirmed : {false, true}) {
        Form form = FormWith(FormCheckBox{"Erste & einzige", false});
        form.controls.emplace_back(FormCheckBox{std::string(150, 'M') + " Zweite", true});
        const int answer = Show(form, [&](HWND dialog) {
            EXPECT_EQ(TextOf(dialog), "Überschrift 字");
            const HWND first = FindControl(dialog, "Button", "Erste && einzige");
            SendMessageW(first, BM_CLICK, 0, 0);
            EXPECT_EQ(FocusOf(dialog), first);
            PressTab(dialog);
            PressKey(dialog, VK_SPACE);
            PressKey(dialog, isConfirmed ? VK_RETURN : VK_ESCAPE);
        });
        EXPECT_EQ(answer, isConfirmed ? 1 : kFormCancelled);
        EXPECT_EQ(std::get<FormCheckBox>(form.controls[0]).isChecked, isConfirmed);
        EXPECT_EQ(std::get<FormCheckBox>(form.controls[1]).isChecked, !isConfirmed);
    }
}

TEST_F(NativeDialogsTest, OnAScreenOfAnotherScaleTextsGrowAndNothingIsLost) {
    Form form = FormWith(FormText{"Überschrift", true});
    form.controls.emplace_back(FormCheckBox{"Erste", false});
    form.controls.emplace_back(
        FormChoices{std::vector<FormChoices::Row>(12, {"Ersatz:", {"keiner", "Arial"}, 0})});
    const auto useOnTwoScreens = [](HWND dialog) {
        const LOGFONTW heading = FontOf(FindControl(dialog, "Static", "Überschrift"));
        SendMessageW(FindControl(dialog, "Button", "Erste"), BM_CLICK, 0, 0);
        SendMessageW(FindControl(dialog, "ComboBox"), CB_SETCURSEL, 1, 0);
        PressTab(dialog);
        MoveToScreenOf(192, dialog);
        EXPECT_THAT(TextsCutOff(dialog), IsEmpty());
        const LOGFONTW grown = FontOf(FindControl(dialog, "Static", "Überschrift"));
        EXPECT_NEAR(grown.lfHeight, heading.lfHeight * 2, 1);
        EXPECT_EQ(grown.lfWeight, FW_BOLD);
        EXPECT_EQ(FocusOf(dialog), FindControl(dialog, "ComboBox")) << "the keyboard stays where it was";
        RECT place{};
        GetWindowRect(dialog, &place);
        EXPECT_EQ(place.left, 40);
        PressKey(dialog, VK_RETURN);
    };
    EXPECT_EQ(Show(form, useOnTwoScreens), 1);
    EXPECT_TRUE(std::get<FormCheckBox>(form.controls[1]).isChecked);
    EXPECT_EQ(std::get<FormChoices>(form.controls[2]).rows[0].selected, 1u);
}

TEST_F(NativeDialogsTest, AListBeginsWithItsSelectionAndADoubleClickConfirms) {
    std::vector<std::string> names(40, "Größe 字");
    names.push_back(std::string(300, 'W'));
    Form form = FormWith(FormList{names, 20});
    std::optional<size_t>& selected = std::get<FormList>(form.controls[0]).selected;
    const auto chooseByDoubleClick = [&](HWND dialog) {
        const HWND list = FindControl(dialog, "ListBox");
        EXPECT_EQ(EntriesOf(list), names);
        EXPECT_EQ(SendMessageW(list, LB_GETCURSEL, 0, 0), 20);
        EXPECT_NE(GetWindowLongPtrW(list, GWL_STYLE) & WS_VSCROLL, 0) << "scrolls";
        EXPECT_EQ(FocusOf(dialog), list);
        Select(list, 3);
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), LBN_DBLCLK),
                     reinterpret_cast<LPARAM>(list));
    };
    EXPECT_EQ(Show(form, chooseByDoubleClick), 1);
    EXPECT_EQ(selected, 3u);
    selected.reset();
    EXPECT_EQ(Show(form, [](HWND dialog) { PressButton(dialog, "Abbrechen && zurück"); }), kFormCancelled);
    EXPECT_EQ(selected, std::nullopt);
}

TEST_F(NativeDialogsTest, ChoicesScrollToWhereTheKeyboardIs) {
    FormChoices choices;
    choices.rows.assign(
        12, {"Garamond kann ersetzt werden durch:", {"Nicht ersetzen", "Arial (Familie, 2.1)", "Zapf"}, 0});
    choices.rows[1] = {"Für Lost wurde kein Ersatz gefunden.", {}, 0};
    Form form = FormWith(choices);
    const auto chooseLast = [](HWND dialog) {
        std::vector<DialogControl> dropDowns = ControlsOf(dialog);
        std::erase_if(dropDowns, [](const auto& control) { return control.windowClass != "ComboBox"; });
        ASSERT_EQ(dropDowns.size(), 11u);
        EXPECT_EQ(FocusOf(dialog), dropDowns.front().window);
        for (size_t index = 1; index < dropDowns.size(); ++index)
            SendMessageW(dialog, WM_NEXTDLGCTL, 0, FALSE);
        const HWND last = dropDowns.back().window;
        EXPECT_EQ(FocusOf(dialog), last);
        RECT place{}, pane{}, common{};
        GetWindowRect(last, &place);
        GetWindowRect(GetParent(last), &pane);
        IntersectRect(&common, &place, &pane);
        EXPECT_NE(EqualRect(&common, &place), 0) << "it is in view";
        SendMessageW(last, CB_SETCURSEL, 2, 0);
        PressKey(dialog, VK_RETURN);
    };
    EXPECT_EQ(Show(form, chooseLast), 1);
    EXPECT_EQ(std::get<FormChoices>(form.controls[0]).rows[11].selected, 2u);
}

TEST_F(NativeDialogsTest, AFolderIsProposedChosenOrNot) {
    const std::string proposed = SystemDefault<Folders>().PathOf(KnownFolder::kTemporary);
    const auto choose = [&](const std::function<void(HWND)>& actions) {
        const DialogDriver user(actions);
        return Dialogs().ChooseFolder(mOwner, "Wohin damit?", proposed);
    };
    const FolderAnswer chosen = choose([](HWND dialog) {
        EXPECT_THAT(TextsOf(dialog, "Static"), testing::Contains("Wohin damit?"));
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(chosen.outcome, FolderAnswer::Outcome::kChosen);
    EXPECT_THAT(chosen.path, testing::StrCaseEq(proposed));
    EXPECT_EQ(choose([](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }).outcome,
              FolderAnswer::Outcome::kCancelled);
}

TEST_F(NativeDialogsTest, AWorkGoesOnUntilItsWindowIsCancelled) {
    auto progress = Dialogs().OpenProgress(mOwner, "Schriften sammeln", "Abbrechen");
    ExpectModal();
    EXPECT_TRUE(progress->Show(0, 3));
    EXPECT_TRUE(progress->Show(1, 3));
    const HWND window = FindWindowW(nullptr, L"Schriften sammeln");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(GetWindow(window, GW_OWNER), mOwner);
    EXPECT_THAT(TextsOf(window, "Static"), ElementsAre("1 / 3"));
    EXPECT_EQ(SendMessageW(FindControl(window, PROGRESS_CLASSA), PBM_GETPOS, 0, 0), 1);
    MoveToScreenOf(144, window);
    EXPECT_THAT(TextsOf(window, "Static"), ElementsAre("1 / 3"));
    EXPECT_THAT(TextsCutOff(window), IsEmpty());
    SendMessageW(FindControl(window, "Button", "Abbrechen"), BM_CLICK, 0, 0);
    EXPECT_FALSE(progress->Show(2, 3));
    progress.reset();
    EXPECT_FALSE(IsWindow(window));
}

TEST_F(NativeDialogsTest, AHostThatIsToEndHearsOfItAndTheWorkStops) {
    auto progress = Dialogs().OpenProgress(mOwner, "Schriften sammeln", "Abbrechen");
    EXPECT_TRUE(progress->Show(0, 3));
    PostQuitMessage(7);
    EXPECT_FALSE(progress->Show(1, 3));
    progress.reset();
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0 && message.message != WM_QUIT)
        DispatchMessageW(&message);
    EXPECT_EQ(message.message, UINT{WM_QUIT});
    EXPECT_EQ(message.wParam, 7u);
}

}  // namespace
