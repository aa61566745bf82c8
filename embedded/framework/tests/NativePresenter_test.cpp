// The dialogs as windows: what they show, and what the user's buttons and choices mean.
#include "presenters/NativePresenter.h"

#include <CoreFoundation++/CFRef.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DialogTestSupport.h"
#include "FakeNativeDialogs.h"
#include "FrameworkTestSupport.h"
#include "library/TarnwickFramework.h"

namespace {

using platform::Form;
using platform::FormButton;
using platform::FormCheckBox;
using platform::FormChoices;
using platform::FormList;
using platform::FormText;
using platform::kFormCancelled;
using testing::ElementsAre;
using testing::HasSubstr;

/// The number of the button with that label, also of one among the controls; -1 when there is none.
int ButtonNamed(const Form& form, const std::string& label) {
    std::vector<FormButton> buttons = form.buttons;
    for (const auto& control : form.controls) {
        if (const auto* button = std::get_if<FormButton>(&control))
            buttons.push_back(*button);
    }
    for (const FormButton& button : buttons) {
        if (button.label == label)
            return button.number;
    }
    return -1;
}

template <class Control>
std::vector<Control> AllOfKind(const Form& form) {
    std::vector<Control> found;
    for (const auto& control : form.controls) {
        if (const auto* one = std::get_if<Control>(&control))
            found.push_back(*one);
    }
    return found;
}

template <class Control>
Control& Only(Form& form) {
    Control* found = nullptr;
    for (auto& control : form.controls) {
        if (auto* one = std::get_if<Control>(&control)) {
            EXPECT_EQ(found, nullptr);
            found = one;
        }
    }
    return *found;
}

std::vector<std::string> Texts(const Form& form) {
    std::vector<std::string> texts;
    for (const FormText& each : AllOfKind<FormText>(form))
        texts.push_back(each.text);
    return texts;
}

class NativePresenterTest : public testing::Test {
protected:
    NativePresenterTest() { mFramework.SetParentWindowForUi(this); }
    ~NativePresenterTest() override {
        for (const platform::WindowHandle owner : mDialogs.owners)
            EXPECT_EQ(owner, this) << "each dialog belongs to the host's window";
    }
    NativePresenterTest(const NativePresenterTest&) = delete;
    NativePresenterTest& operator=(const NativePresenterTest&) = delete;

    /// From now on the user presses that button, after `change`.
    void Press(
        const std::string& label, std::function<void(Form&)> change = [](Form&) {}) {
        mDialogs.user = [=](Form& form) {
            EXPECT_NE(ButtonNamed(form, label), -1) << label;
            change(form);
            return ButtonNamed(form, label);
        };
    }
    std::optional<int32_t> SelectWorkgroup(int32_t current) {
        int32_t chosen = current;
        return mFramework.ShowSelectWorkgroup(mWorkgroups.get(), &chosen) ? std::optional(chosen)
                                                                          : std::nullopt;
    }
    std::optional<int32_t> ChooseCommand() {
        int32_t command = -1;
        return mFramework.ShowCommandBox(mState.get(), &command) ? std::optional(command) : std::nullopt;
    }
    bool ResolveFonts(const RecordList& fonts) {
        mResolved = cf::MutableArray();
        mSkipped = cf::MutableArray();
        return mFramework.ShowResolveFonts(fonts.get(), mResolved.get(), mSkipped.get());
    }
    Form LastForm() const { return mDialogs.forms.back(); }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
    FakeNativeDialogs mDialogs;
    TarnwickFramework mFramework{{"com.vantorix.Plugin", "Illustrator2025", "8.0.1"},
                                 platform::Utf8Text(mFolder.Path()),
                                 "en",
                                 std::make_unique<NativePresenter>(mDialogs, "en")};
    RecordList mWorkgroups = Records({WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(7, "Print")});
    Record mState = cf::MutableDictionary();
    RecordList mResolved;
    RecordList mSkipped;
};

TEST_F(NativePresenterTest, AMessageIsAnsweredByItsButtons) {
    EXPECT_EQ(mFramework.ShowMessageBox(609, 610, MessageBoxButtons::kYesNo), 1);
    mDialogs.messageAnswer = false;
    EXPECT_EQ(mFramework.ShowMessageBox(609, 610, MessageBoxButtons::kYesNo), 2);
    EXPECT_EQ(mFramework.ShowMessageBox(600, 601, MessageBoxButtons::kOk), 1);
    mFramework.ShowMessageAbout(204, 650, cf::String("/100%s").get());
    ASSERT_EQ(mDialogs.messages.size(), 4u);
    EXPECT_EQ(mDialogs.messages[1].buttons, platform::MessageButtons::kYesNo);
    EXPECT_EQ(mDialogs.messages[2].buttons, platform::MessageButtons::kOk);
    EXPECT_EQ(mDialogs.messages[3].owner, this);
    EXPECT_EQ(mDialogs.messages[3].title, "Collect Fonts for Output") << "without the dots of the menu item";
    EXPECT_EQ(mDialogs.messages[3].text, "The document's fonts were collected in /100%s.");
}

TEST_F(NativePresenterTest, TheAboutBoxCountsAsConfirmedHoweverItIsClosed) {
    EXPECT_TRUE(mFramework.ShowAbout());
    EXPECT_EQ(LastForm().title, "About");
    EXPECT_THAT(Texts(LastForm()), ElementsAre("Quillon Type Client", "Plug-in version 8.0.1",
                                               "Activates the fonts that your documents need."));
    EXPECT_EQ(ButtonNamed(LastForm(), "OK"), LastForm().defaultButton);
}

TEST_F(NativePresenterTest, PreferencesAreStoredAsCheckedAndOnlyWhenConfirmed) {
    mFramework.SetBoolPreference("EnablePlugin", true);
    const auto toggle = [](Form& form) {
        for (const size_t index : {size_t{0}, size_t{8}}) {
            bool& isChecked = std::get<FormCheckBox>(form.controls.at(index)).isChecked;
            isChecked = !isChecked;
        }
    };
    Press("Cancel", toggle);
    EXPECT_FALSE(mFramework.ShowPreferences());
    EXPECT_TRUE(mFramework.GetBoolPreference("EnablePlugin"));
    Press("OK", toggle);
    EXPECT_TRUE(mFramework.ShowPreferences());
    EXPECT_FALSE(mFramework.GetBoolPreference("EnablePlugin"));
    EXPECT_TRUE(mFramework.GetBoolPreference("EnableLogging"));
    const auto boxes = AllOfKind<FormCheckBox>(LastForm());
    ASSERT_EQ(boxes.size(), 9u);
    EXPECT_TRUE(boxes[0].isChecked);
    EXPECT_FALSE(boxes[8].isChecked);
    EXPECT_EQ(boxes[8].label, "Keep a log for troubleshooting");
}

TEST_F(NativePresenterTest, AWorkgroupIsChosenFromAListInWhichTheCurrentOneIsSelected) {
    Press("OK");
    EXPECT_EQ(SelectWorkgroup(7), 7);
    EXPECT_EQ(Only<FormList>(mDialogs.forms.back()).selected, 1u);
    EXPECT_EQ(SelectWorkgroup(1), std::nullopt) << "nothing was selected";
    Press("OK", [](Form& form) { Only<FormList>(form).selected = 0; });
    EXPECT_EQ(SelectWorkgroup(7), 30);
    Press("Cancel", [](Form& form) { Only<FormList>(form).selected = 0; });
    EXPECT_EQ(SelectWorkgroup(7), std::nullopt);
    EXPECT_THAT(Only<FormList>(mDialogs.forms.back()).entries, ElementsAre("Personal Library", "Print"));

    mWorkgroups = Records({});
    EXPECT_EQ(SelectWorkgroup(7), std::nullopt);
    EXPECT_EQ(mDialogs.messages.at(0).text, "No Workgroup Available");
}

TEST_F(NativePresenterTest, TheCommandBoxHasAButtonForEachCommandAndAListOfWorkgroups) {
    cf::Set(mState, "Workgroups", mWorkgroups);
    cf::Set(mState, "CurrentWorkgroupID", 7);
    cf::Set(mState, "ButtonsEnabled", true);
    cf::Set(mState, "IsOnline", true);
    Press("Check Document's Fonts");
    EXPECT_EQ(ChooseCommand(), 5);
    Press("Preferences...");
    EXPECT_EQ(ChooseCommand(), 6);
    Press("Select Workgroup");
    EXPECT_EQ(ChooseCommand(), 9);
    Press("Select Workgroup", [](Form& form) { Only<FormList>(form).selected = 0; });
    EXPECT_EQ(ChooseCommand(), 8);
    EXPECT_THAT(Texts(LastForm()), ElementsAre("Online", "Current workgroup: Print"));
    EXPECT_EQ(LastForm().defaultButton, ButtonNamed(LastForm(), "Select Workgroup"));
    Press("Select Workgroup", [](Form& form) { Only<FormList>(form).selected.reset(); });
    EXPECT_EQ(ChooseCommand(), std::nullopt);
    Press("Close");
    EXPECT_EQ(ChooseCommand(), std::nullopt);
    cf::Set(mState, "IsLocalPersonal", true);
    Press("Select Library");
    EXPECT_EQ(ChooseCommand(), 9);
}

TEST_F(NativePresenterTest, TheCommandBoxWithoutWorkgroupsHasNoList) {
    Press("About...");
    EXPECT_EQ(ChooseCommand(), 7);
    EXPECT_THAT(Texts(LastForm()), ElementsAre("Offline"));
    EXPECT_TRUE(AllOfKind<FormList>(LastForm()).empty());
    EXPECT_EQ(AllOfKind<FormButton>(LastForm()).size(), 2u) << "no document, no commands for one";
    EXPECT_EQ(LastForm().defaultButton, kFormCancelled);
}

TEST_F(NativePresenterTest, EachMissingFontIsAskedAboutOnceAndKeptUnlessReplaced) {
    const auto fonts = Records({FontRecord("Garamond", {"Zapf", "Arial"}), FontRecord("Lost"),
                                FontRecord("Garamond", {"Zapf", "Arial"}), FontRecord("Didot", {"Zapf"})});
    Press("OK", [](Form& form) { Only<FormChoices>(form).rows.at(0).selected = 2; });
    EXPECT_TRUE(ResolveFonts(fonts));
    EXPECT_THAT(Names(mResolved), ElementsAre("Garamond", "Garamond"));
    EXPECT_THAT(Names(mSkipped), ElementsAre("Lost", "Didot"));
    EXPECT_EQ(ReplacementOf(mResolved, 1), "Zapf");
    const auto rows = Only<FormChoices>(mDialogs.forms.back()).rows;
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].label, "Garamond can be replaced with:");
    EXPECT_THAT(rows[0].options, ElementsAre("Do not replace", "Arial (Family, 2.1)", "Zapf (Family, 2.1)"));
    EXPECT_EQ(rows[0].selected, 0u);
    EXPECT_EQ(rows[1].label, "No replacement was found for Lost.");
    EXPECT_TRUE(rows[1].options.empty());

    Press("Cancel", [](Form& form) { Only<FormChoices>(form).rows.at(0).selected = 2; });
    EXPECT_FALSE(ResolveFonts(fonts));
    EXPECT_EQ(Names(mSkipped).size(), 4u);
}

TEST_F(NativePresenterTest, RestrictedFontsAreListedAndConfirmed) {
    const auto fonts = Records({FontRecord("Didot"), FontRecord("Bodoni")});
    EXPECT_FALSE(mFramework.ShowRestrictedFonts(fonts.get(), true));
    EXPECT_THAT(Texts(LastForm()), ElementsAre(HasSubstr("which are new in the document")));
    Press("OK");
    EXPECT_TRUE(mFramework.ShowRestrictedFonts(fonts.get(), false));
    const FormList list = Only<FormList>(mDialogs.forms.back());
    EXPECT_THAT(list.entries, ElementsAre("Didot", "Bodoni"));
    EXPECT_FALSE(list.isSelectable);
}

TEST_F(NativePresenterTest, AFolderIsChosenOrNotOrHasNoPath) {
    using Outcome = platform::FolderAnswer::Outcome;
    const auto choose = [&](CFStringRef prompt) -> std::optional<std::string> {
        CFStringRef folder = nullptr;
        const bool isConfirmed = mFramework.ShowChooseFolder(prompt, CFSTR("/before"), &folder);
        const auto owned = AdoptCF(folder);
        EXPECT_EQ(isConfirmed, folder != nullptr);
        return isConfirmed ? std::optional(cf::ToUtf8(folder)) : std::nullopt;
    };
    const std::string chosen = mFolder / "für den Druck";
    EXPECT_EQ(choose(CFSTR("Where?")), std::nullopt);
    mDialogs.folderAnswer = {Outcome::kChosen, chosen};
    EXPECT_EQ(choose(nullptr), chosen);
    mDialogs.folderAnswer = {Outcome::kNoPath, {}};
    EXPECT_EQ(choose(CFSTR("Where?")), "") << "chosen, and told apart from giving up";
    EXPECT_THAT(mDialogs.prompts, ElementsAre("Where?|/before", "Choose a Folder|/before", "Where?|/before"));
    EXPECT_EQ(mLog.Text(), "");
}

TEST_F(NativePresenterTest, AWorkHasAWindowUntilItEndsOrIsStoppedOrSomethingElseIsShown) {
    for (int32_t done = 0; done <= 2; ++done)
        EXPECT_TRUE(mFramework.ShowProgress(204, done, 2));
    EXPECT_THAT(mDialogs.progress,
                ElementsAre("open Collect Fonts for Output, Cancel", "0/2", "1/2", "2/2", "close"));
    mDialogs.progress.clear();
    mDialogs.stopAt = 1;
    EXPECT_TRUE(mFramework.ShowProgress(204, 0, 2));
    EXPECT_FALSE(mFramework.ShowProgress(204, 1, 2));
    EXPECT_THAT(mDialogs.progress.back(), "close");
    EXPECT_TRUE(mFramework.ShowProgress(204, 0, 2));
    mFramework.ShowMessageBox(600, 601, MessageBoxButtons::kOk);
    EXPECT_THAT(mDialogs.progress.back(), "close") << "a message is not shown behind it";
    EXPECT_TRUE(mFramework.ShowProgress(204, 1, 2)) << "a step of a work whose window is gone";
}

/// Whom the environment chooses where the system can show dialogs, told by who answers.
class ChoosePresenterTest : public testing::Test {
protected:
    int32_t Ask() {
        return ChoosePresenter("en")->AskMessageBox({609, 610, MessageBoxButtons::kYesNo, "", ""});
    }
    size_t WindowCount() const { return mDialogs.messages.size(); }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
    FakeNativeDialogs mDialogs;
    platform::ScopedOverride<platform::NativeDialogs> mOverride{mDialogs};
    ScopedVariable mAnswers{"PLUGINCORE_ANSWERS", ""};
    ScopedVariable mAnswersLog{"PLUGINCORE_ANSWERS_LOG", ""};
    ScopedVariable mPresenter{"PLUGINCORE_PRESENTER", ""};
};

TEST_F(ChoosePresenterTest, AnswersComeBeforeWindowsAndWindowsBeforeAllElse) {
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(WindowCount(), 1u);
    WriteText(mFolder / "answers", R"([{"titleID": 609, "answer": 2}])");
    const ScopedVariable answers("PLUGINCORE_ANSWERS", mFolder / "answers");
    const ScopedVariable named("PLUGINCORE_PRESENTER", "native");
    EXPECT_EQ(Ask(), 2);
    EXPECT_EQ(WindowCount(), 1u);
    EXPECT_EQ(mLog.Text(), "");
}

TEST_F(ChoosePresenterTest, TheOneThatIsNamedAsksAndNobodyWhereThatCannotBe) {
    const ScopedVariable silent("PLUGINCORE_PRESENTER", "silent");
    EXPECT_EQ(Ask(), 2);
    EXPECT_EQ(WindowCount(), 0u);
    const ScopedVariable native("PLUGINCORE_PRESENTER", "native");
    EXPECT_EQ(Ask(), 1);
    mDialogs.isAvailable = false;
    EXPECT_EQ(Ask(), 2);
    EXPECT_EQ(WindowCount(), 1u);
    EXPECT_THAT(mLog.Text(), HasSubstr("No dialogs can be shown here"));
    const ScopedVariable terminal("PLUGINCORE_PRESENTER", "terminal");
    testing::internal::CaptureStderr();
    ChoosePresenter("en")->AskDialog({"About", {{"version", ""}}});
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Quillon Type Client"));
}

TEST_F(ChoosePresenterTest, ANameThatIsNoneIsReportedAndIgnored) {
    const ScopedVariable unknown("PLUGINCORE_PRESENTER", "Native");
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(WindowCount(), 1u);
    EXPECT_THAT(mLog.Text(), HasSubstr("'Native'"));
}

}  // namespace
