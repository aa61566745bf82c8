// The dialogs as a person at a terminal sees them: what is shown, and what typing means.
#include <CoreFoundation++/CFRef.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "DialogTestSupport.h"
#include "FrameworkTestSupport.h"
#include "library/TarnwickFramework.h"
#include "platform/Folders.h"
#include "presenters/TerminalPresenter.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class TerminalFormsTest : public testing::Test {
protected:
    void Type(const std::string& typed) {
        mInput.clear();
        mInput.str(typed);
        mOutput.str("");
    }
    /// What was shown since; on the way, that nothing in it is missing or out of control.
    std::string Shown() const {
        EXPECT_THAT(mOutput.str(), AllOf(Not(HasSubstr("Message ")), Not(HasSubstr("%s")),
                                         Not(HasSubstr("\033")), Not(HasSubstr("\302\233"))));
        return mOutput.str();
    }
    std::optional<int32_t> SelectWorkgroup(const std::string& typed, int32_t current) {
        Type(typed);
        int32_t chosen = current;
        const bool isConfirmed = mFramework.ShowSelectWorkgroup(mWorkgroups.get(), &chosen);
        EXPECT_TRUE(isConfirmed || chosen == current);
        return isConfirmed ? std::optional(chosen) : std::nullopt;
    }
    std::optional<int32_t> ChooseCommand(const std::string& typed, bool areButtonsEnabled,
                                         std::optional<int32_t> current) {
        Type(typed);
        const auto state = cf::MutableDictionary();
        cf::Set(state, "Workgroups", mWorkgroups);
        if (current)
            cf::Set(state, "CurrentWorkgroupID", *current);
        cf::Set(state, "ButtonsEnabled", areButtonsEnabled);
        cf::Set(state, "IsOnline", true);
        int32_t command = -1;
        const bool isConfirmed = mFramework.ShowCommandBox(state.get(), &command);
        EXPECT_TRUE(isConfirmed || command == -1);
        return isConfirmed ? std::optional(command) : std::nullopt;
    }
    /// Asks about three missing fonts, two of which can be replaced.
    bool ResolveFonts(const std::string& typed) {
        Type(typed);
        mResolved = cf::MutableArray();
        mSkipped = cf::MutableArray();
        return mFramework.ShowResolveFonts(MissingFonts().get(), mResolved.get(), mSkipped.get());
    }
    std::optional<std::string> ChooseFolder(const std::string& typed, const char* initialFolder) {
        Type(typed);
        const auto initial = initialFolder != nullptr ? cf::String(initialFolder) : nullptr;
        CFStringRef chosen = nullptr;
        const bool isConfirmed =
            mFramework.ShowChooseFolder(cf::String("Where to... exactly?").get(), initial.get(), &chosen);
        const auto owned = AdoptCF(chosen);
        EXPECT_EQ(isConfirmed, chosen != nullptr);
        return isConfirmed ? std::optional(cf::ToUtf8(chosen)) : std::nullopt;
    }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
    std::istringstream mInput;
    std::ostringstream mOutput;
    TarnwickFramework mFramework{
        {"com.vantorix.Plugin", "Illustrator2025", "8.0.1"},
        platform::Utf8Text(mFolder.Path()),
        "en",
        std::make_unique<TerminalPresenter>(Terminal::Streams{mInput, mOutput, false}, "en")};
    RecordList mWorkgroups =
        Records({WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(-2, "Print"),
                 WorkgroupRecord(7, "Print 2024\033[2J\302\233"), WorkgroupRecord(0, "2")});
    RecordList mResolved;
    RecordList mSkipped;
};

TEST_F(TerminalFormsTest, MessagesNameTheirSubjectWhateverItHolds) {
    mFramework.ShowMessageAbout(204, 650, cf::String("/100%s %n\033[31m/ü").get());
    EXPECT_EQ(mOutput.str(),
              "Collect Fonts for Output\nThe document's fonts were collected in /100%s %n[31m/ü.\n");
}

TEST_F(TerminalFormsTest, TheAboutBoxNamesTheVersionAndWaitsForNothing) {
    EXPECT_TRUE(mFramework.ShowAbout());
    EXPECT_THAT(Shown(), HasSubstr("Quillon Type Client\nPlug-in version 8.0.1\n"));
}

TEST_F(TerminalFormsTest, PreferencesAreSwitchedByNumberAndStoredAtTheEndOnly) {
    mFramework.SetBoolPreference("EnablePlugin", true);
    const std::string before = ReadText(mFolder / "Preferences.json");
    for (const char* givenUp : {"1\n9\nq\n", "1\n", "1\ncancel\n", ""}) {
        Type(givenUp);
        EXPECT_FALSE(mFramework.ShowPreferences()) << givenUp;
        EXPECT_EQ(ReadText(mFolder / "Preferences.json"), before);
    }
    Type("1\n9\n4\n4\n10\nkeep\nkeep\n\n");
    EXPECT_TRUE(mFramework.ShowPreferences());
    EXPECT_FALSE(mFramework.GetBoolPreference("EnablePlugin"));
    EXPECT_TRUE(mFramework.GetBoolPreference("EnableLogging")) << "switched three times";
    EXPECT_THAT(Shown(), AllOf(HasSubstr("Preferences\n   1  Activate fonts automatically  [on]\n   2  "),
                               HasSubstr("   1  Activate fonts automatically  [off]\n"),
                               HasSubstr("   9  Keep a log for troubleshooting  [on]\n"),
                               HasSubstr("That is not one of the choices.\n")));
    EXPECT_THAT(ReadText(mFolder / "Preferences.json"), Not(HasSubstr("SupportEmbeddedObjects")))
        << "switched back, so not changed";
}

TEST_F(TerminalFormsTest, PreferencesThatCannotBeStoredAreToldAbout) {
    std::filesystem::create_directories(platform::Utf8Path(mFolder / "Preferences.json"));
    Type("1\n\n");
    EXPECT_FALSE(mFramework.ShowPreferences());
    EXPECT_THAT(Shown(),
                AllOf(HasSubstr("could not be saved"), HasSubstr(platform::Utf8Text(mFolder.Path()))));
}

TEST_F(TerminalFormsTest, AWorkgroupIsChosenByNumberNameOrItsBeginning) {
    EXPECT_EQ(SelectWorkgroup("3\n", 30), 7);
    EXPECT_EQ(SelectWorkgroup("2\n", 30), -2) << "a number before a name";
    EXPECT_EQ(SelectWorkgroup("print\n", 30), -2) << "a whole name before a beginning";
    EXPECT_EQ(SelectWorkgroup(" PERS \n", 7), 30);
    EXPECT_EQ(SelectWorkgroup("\n", 7), 7);
    EXPECT_THAT(Shown(),
                AllOf(HasSubstr("Select Workgroup\n   1  Personal Library\n   2  Print\n*  3  Print"),
                      EndsWith("Enter for Print 2024[2J, q to cancel: ")));
    EXPECT_EQ(SelectWorkgroup("pri\n0\n5\n1\n", 7), 30) << "an ambiguous name is asked again";
    for (const char* notConfirmed : {"q\n", "Cancel\n", "", "nonsense\n", "0\n-1\n"})
        EXPECT_EQ(SelectWorkgroup(notConfirmed, 7), std::nullopt) << notConfirmed;
    EXPECT_EQ(SelectWorkgroup("\n", 99), std::nullopt) << "there is no current one";
    mWorkgroups = cf::MutableArray();
    EXPECT_EQ(SelectWorkgroup("1\n", 7), std::nullopt);
    EXPECT_EQ(Shown(), "No Workgroup Available\n");
}

TEST_F(TerminalFormsTest, TheCommandBoxOffersWhatIsAllowedNow) {
    for (const int32_t command : {3, 4, 5, 6, 7, 8, 11})
        EXPECT_EQ(ChooseCommand(std::to_string(command) + "\n", true, 30), command);
    EXPECT_EQ(
        Shown(),
        "Quillon Type Client\nOnline\nCurrent workgroup: Personal Library\n"
        "   3  Collect Fonts for Output...\n   4  Create Document Set...\n   5  Check Document's Fonts\n"
        "   6  Preferences...\n   7  About...\nSelect Workgroup\n"
        "*  8  Personal Library\n   9  Print\n  10  Print 2024[2J\n  11  2\n"
        "Number of a command, Enter to close: ");
    EXPECT_EQ(ChooseCommand("12\n0\n1\n5\n", true, 30), 5);
    EXPECT_EQ(ChooseCommand("4\n3\n", true, -2), 3) << "no set can be made of that workgroup";
    EXPECT_EQ(ChooseCommand("3\n4\n5\n6\n", false, 30), 6);
    EXPECT_EQ(ChooseCommand("8\n", true, std::nullopt), 8);
    EXPECT_THAT(Shown(), AllOf(Not(HasSubstr("Current workgroup")), Not(HasSubstr("*"))));
    for (const char* notConfirmed : {"\n", "q\n", "", "nothing\n"})
        EXPECT_EQ(ChooseCommand(notConfirmed, true, 30), std::nullopt) << notConfirmed;
}

TEST_F(TerminalFormsTest, EachMissingFontIsReplacedOrSkipped) {
    EXPECT_TRUE(ResolveFonts("arial\n\n"));
    EXPECT_THAT(Names(mResolved), ElementsAre("Garamond"));
    EXPECT_THAT(Names(mSkipped), ElementsAre("Lost", "Helvetica"));
    EXPECT_EQ(ReplacementOf(mResolved, 0), "Arial");
    EXPECT_THAT(Shown(), AllOf(HasSubstr("Garamond can be replaced with:\n   1  Arial  [Family, 2.1]\n"
                                         "   2  Arial-Bold  [Family, 2.1]\n   3  Zapf  [Family, 2.1]\n"),
                               HasSubstr("No replacement was found for Lost.\n")));

    EXPECT_TRUE(ResolveFonts("4\n3\n2\n"));
    EXPECT_THAT(Names(mResolved), ElementsAre("Garamond", "Helvetica"));
    EXPECT_THAT(Names(mSkipped), ElementsAre("Lost"));
    for (const char* givenUp : {"1\nq\n", "1\n", ""}) {
        EXPECT_FALSE(ResolveFonts(givenUp)) << givenUp;
        EXPECT_THAT(Names(mSkipped), ElementsAre("Garamond", "Lost", "Helvetica"));
        EXPECT_EQ(cf::Count(mResolved.get()), 0);
    }
}

TEST_F(TerminalFormsTest, RestrictedFontsAreListedAndConfirmed) {
    const auto fonts = Records({FontRecord("Didot")});
    for (const char* confirmed : {"\n", "y\n", "what\n\n"}) {
        Type(confirmed);
        EXPECT_TRUE(mFramework.ShowRestrictedFonts(fonts.get(), true)) << confirmed;
    }
    EXPECT_THAT(Shown(), AllOf(HasSubstr("new in the document"), HasSubstr("\n  Didot\n")));
    for (const char* refused : {"n\n", "q\n", "", "what\n"}) {
        Type(refused);
        EXPECT_FALSE(mFramework.ShowRestrictedFonts(fonts.get(), false)) << refused;
    }
    EXPECT_THAT(Shown(), Not(HasSubstr("new in the document")));
}

TEST_F(TerminalFormsTest, AFolderIsTypedOrTheProposedOneTaken) {
    WriteText(mFolder / "file", "");
    EXPECT_EQ(ChooseFolder("\n", "/ü/before"), platform::FullPath("/ü/before"));
    EXPECT_THAT(Shown(), HasSubstr("Where to... exactly?\nFolder, Enter for /ü/before, q to cancel: "));
    EXPECT_EQ(ChooseFolder(mFolder / "new one/" + "\n", "/before"), mFolder / "new one");
    EXPECT_EQ(ChooseFolder("a/../b\n", nullptr), platform::FullPath("b"));
    EXPECT_EQ(ChooseFolder(mFolder / "file" + "\n/other\n", nullptr), platform::FullPath("/other"));
    EXPECT_THAT(Shown(), HasSubstr("file cannot be used as a folder.\n"));
    for (const char* notConfirmed : {"q\n", "", "\377\n"})
        EXPECT_EQ(ChooseFolder(notConfirmed, "/before"), std::nullopt) << notConfirmed;
    EXPECT_EQ(ChooseFolder("\n", nullptr), std::nullopt);
}

TEST_F(TerminalFormsTest, ProgressIsDrawnOverItselfAndLeavesAWholeLine) {
    EXPECT_TRUE(mFramework.ShowProgress(204, 0, 4));
    EXPECT_TRUE(mFramework.ShowProgress(204, 3, 4));
    EXPECT_TRUE(mFramework.ShowProgress(204, 4, 4));
    EXPECT_EQ(Shown(),
              "\rCollect Fonts for Output  [....................] 0/4"
              "\rCollect Fonts for Output  [###############.....] 3/4"
              "\rCollect Fonts for Output  [####################] 4/4\n");
    mOutput.str("");
    mFramework.ShowProgress(204, 1, 4);
    mFramework.ShowMessageBox(204, 656, MessageBoxButtons::kOk);
    EXPECT_THAT(Shown(), HasSubstr("] 1/4\nCollect Fonts for Output\n")) << "the work ended early";
    EXPECT_TRUE(mFramework.ShowProgress(204, 0, 0)) << "nothing to divide by";
}

}  // namespace
