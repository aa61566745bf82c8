// Each dialog, answered from a file, at a terminal and in windows: what the answers mean, and what is shown.
#include <gmock/gmock.h>

#include <stdexcept>

#include "CapturedTrace.h"
#include "TemporaryFolder.h"
#include "library/TarnwickFramework.h"
#include "platform/Folders.h"
#include "platform/Utf8Path.h"
#include "presenters/NativePresenter.h"
#include "presenters/ScriptedPresenter.h"
#include "presenters/TerminalPresenter.h"
#include "tests/DialogTestSupport.h"
#include "tests/FakeNativeDialogs.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using Answers = std::vector<std::string>;

class DialogsTest : public testing::Test {
protected:
    TarnwickFramework With(std::unique_ptr<Presenter> presenter, const std::string& language = "en") {
        return {{"com.vantorix.Plugin", "Illustrator2025", "8.0.1"},
                platform::Utf8Text(mFolder.Path()),
                language,
                std::move(presenter)};
    }
    std::string Ask(TarnwickFramework framework, const std::string& dialog) {
        framework.SetParentWindowForUi(this);
        std::istringstream words(dialog);
        std::string name, state;
        words >> name >> state;
        const std::string outcome =
            name == "SelectWorkgroup" ? SelectWorkgroup(framework, state)
            : name == "CommandBox"    ? ChooseCommand(framework, state)
            : name == "ResolveFonts"  ? ResolveFonts(framework)
            : name == "ChooseFolder"  ? ChooseFolder(framework, state)
            : name == "Preferences"   ? SetPreferences(framework)
            : name == "Question"
                ? std::to_string(framework.ShowMessageBox(609, 610, MessageBoxButtons::kYesNo))
            : name == "Notice" ? std::to_string(framework.ShowMessageBox(204, 656, MessageBoxButtons::kOk))
            : name == "About"  ? YesOrNo(framework.ShowAbout())
                               : YesOrNo(framework.ShowRestrictedFonts(mFonts.get(), state == "new"));
        const bool isReported = mLog.Text().find("means nothing") != std::string::npos;
        mLog.Clear();
        return outcome + (isReported ? ", reported" : "");
    }
    std::string AskScripted(const std::string& dialog, const std::string& answer) {
        const json entry = {{"dialog", dialog.substr(0, dialog.find(' '))},
                            {"titleID", dialog == "Notice" ? 204 : 609},
                            {"answer", json::parse(answer)}};
        return Ask(With(std::make_unique<ScriptedPresenter>(json::array({entry}))), dialog);
    }
    std::string AskAtTerminal(const std::string& dialog, const std::string& typed) {
        std::istringstream input(typed);
        std::ostringstream output;
        const std::string outcome = Ask(
            With(std::make_unique<TerminalPresenter>(Terminal::Streams{input, output, false}, "en")), dialog);
        mShown = output.str();
        EXPECT_THAT(mShown, testing::Not(testing::AnyOf(HasSubstr("Message "), HasSubstr("%s"),
                                                        HasSubstr("\033"), HasSubstr("\302\233"))));
        return outcome;
    }
    std::string AskInWindow(const std::string& dialog, const std::string& clicks) {
        FakeNativeDialogs dialogs;
        dialogs.clicks = clicks;
        const std::string outcome = Ask(With(std::make_unique<NativePresenter>(dialogs, "en")), dialog);
        EXPECT_EQ(dialogs.owners, std::vector<platform::WindowHandle>{this}) << "one dialog, the host's";
        mShown = dialogs.shown;
        return outcome;
    }
    /// Asks once per answer; the answers of a call mean the same. `dialog`: with the state that it is opened in.
    void Expect(const char* dialog, const std::string& outcome, const Answers& written,
                const Answers& typed = {}, const Answers& clicked = {}) {
        for (const std::string& answer : written)
            EXPECT_EQ(AskScripted(dialog, answer), outcome) << dialog << ": " << answer;
        for (const std::string& answer : typed)
            EXPECT_EQ(AskAtTerminal(dialog, answer), outcome) << dialog << ": " << answer;
        for (const std::string& answer : clicked)
            EXPECT_EQ(AskInWindow(dialog, answer), outcome) << dialog << ": " << answer;
    }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
    std::string mShown;
    CFRef<CFMutableArrayRef> mWorkgroups =
        List(WorkgroupRecord(30, "Personal Library"), WorkgroupRecord(-2, "Print"), Record(),
             WorkgroupRecord(7, "Print 2024\033[2J\302\233"), WorkgroupRecord(0, "2"));
    CFRef<CFMutableArrayRef> mFonts =
        List(FontRecord("Garamond", {"Zapf", "Arial", "Arial-Bold"}), FontRecord("Lost"),
             FontRecord("Helvetica", {"Zapf", "Arial-Bold"}), FontRecord("Garamond", {"Zapf", "Arial"}));

private:
    static std::string YesOrNo(bool isConfirmed) { return isConfirmed ? "yes" : "no"; }

    std::string SelectWorkgroup(TarnwickFramework& framework, const std::string& current) {
        int32_t chosen = std::stoi(current);
        if (framework.ShowSelectWorkgroup(mWorkgroups.get(), &chosen))
            return std::to_string(chosen);
        return std::to_string(chosen) == current ? "no" : "changed";
    }
    /// `state`: the number of the current workgroup, "none" or "offline".
    std::string ChooseCommand(TarnwickFramework& framework, const std::string& state) {
        const auto values = cf::MutableDictionary();
        if (state != "offline") {
            cf::Set(values, "Workgroups", mWorkgroups);
            cf::Set(values, "ButtonsEnabled", state != "none");
            cf::Set(values, "IsOnline", true);
            cf::Set(values, "IsLocalPersonal", state == "0");
        }
        if (state != "offline" && state != "none")
            cf::Set(values, "CurrentWorkgroupID", std::stoi(state));
        int32_t command = -1;
        const bool isConfirmed = framework.ShowCommandBox(values.get(), &command);
        EXPECT_EQ(isConfirmed, command != -1);
        return isConfirmed ? std::to_string(command) : "no";
    }
    /// The names of the fonts with their replacements, and of those without.
    std::string ResolveFonts(TarnwickFramework& framework) {
        const auto resolved = cf::MutableArray(), skipped = cf::MutableArray();
        std::string outcome =
            YesOrNo(framework.ShowResolveFonts(mFonts.get(), resolved.get(), skipped.get()));
        for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(resolved.get())) {
            EXPECT_TRUE(cf::GetDictionary(font, kGS_PossibleReplacementsKey)) << "the record is whole";
            outcome += " " + cf::GetString(font, kGS_PostScriptNameKey) + "=" +
                       cf::GetString(cf::GetDictionary(font, kGS_MatchedFontKey), kGS_PostScriptNameKey);
        }
        for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(skipped.get()))
            outcome += " " + cf::GetString(font, kGS_PostScriptNameKey);
        return outcome;
    }
    std::string ChooseFolder(TarnwickFramework& framework, const std::string& initialFolder) {
        const auto initial = initialFolder.empty() ? nullptr : cf::String(initialFolder);
        const auto prompt = initialFolder.empty() ? nullptr : cf::String("Where to... exactly?");
        CFStringRef chosen = nullptr;
        const bool isConfirmed = framework.ShowChooseFolder(prompt.get(), initial.get(), &chosen);
        const auto owned = AdoptCF(chosen);
        EXPECT_EQ(isConfirmed, chosen != nullptr);
        return isConfirmed ? "'" + cf::ToUtf8(chosen) + "'" : "no";
    }
    /// Of a plug-in that is enabled: answers with what is stored afterwards.
    std::string SetPreferences(TarnwickFramework& framework) {
        const std::string path = mFolder / "Preferences.json";
        WriteText(path, R"({"com.vantorix.Plugin": {"Illustrator2025": {"EnablePlugin": true}}})");
        const bool isConfirmed = framework.ShowPreferences();
        return YesOrNo(isConfirmed) + " " +
               json::parse(ContentOf(path))["com.vantorix.Plugin"]["Illustrator2025"].dump();
    }
};

TEST_F(DialogsTest, AMessageIsAnsweredByItsButtons) {
    Expect("Question", "1", {"1"}, {"1\n", "y\n", " YES \r\n", "1", "maybe\n3\nye\n"}, {"Yes"});
    Expect("Question", "2", {"2", "3", "0", "\"1\"", "1.5", "true", "4294967297", "null"},
           {"2\n", "N\n", "no\n", "\n", "", "  \n", "yes!\n", "q\n1\n"}, {"No"});
    Expect("Notice", "1", {"1", "2"}, {"", "2\n"}, {"OK", ""});
}

TEST_F(DialogsTest, WhatHasNoChoicesIsConfirmedOrNot) {
    Expect("About", "yes", {"true"}, {""}, {"OK", ""});
    Expect("RestrictedFonts new", "yes", {"true", "{}"}, {"\n", "y\n", "what\n\n"}, {"OK"});
    Expect("RestrictedFonts", "no", {"false", "null"}, {"n\n", "q\n", "", "what\n"}, {"Cancel", ""});
    Expect("RestrictedFonts", "no, reported", {"1", "[]", "\"true\""});
}

TEST_F(DialogsTest, OnlyAWorkgroupOfTheListCanBeChosen) {
    Expect("SelectWorkgroup 7", "30", {R"({"workgroupID": 30})"}, {" PERS \n", "pri\n0\n5\n1\n"});
    Expect("SelectWorkgroup 7", "30", {}, {}, {"Personal Library|OK"});
    Expect("SelectWorkgroup 30", "7", {R"({"workgroupID": 7})"}, {"3\n"});
    Expect("SelectWorkgroup 30", "-2", {R"({"workgroupID": -2})"}, {"2\n", "print\n"}, {"Print|OK"});
    Expect("SelectWorkgroup 7", "7", {"true"}, {"\n"}, {"OK"});
    Expect("SelectWorkgroup 7", "no", {"false", "null"}, {"q\n", "Cancel\n", "", "nonsense\n", "0\n-1\n"},
           {"Print|Cancel", "-|OK"});
    Expect("SelectWorkgroup 99", "no", {}, {"\n"}, {"OK"});
    Expect("SelectWorkgroup 99", "no, reported", {"true"});
    Expect("SelectWorkgroup 7", "no, reported",
           {R"({"workgroupID": 8})", R"({"workgroupID": "30"})", R"({"workgroupID": 4294967326})", "{}", "30",
            "[]", R"("Print")"});

    mWorkgroups = cf::MutableArray();
    Expect("SelectWorkgroup 7", "no", {}, {"1\n"}, {"OK"});

    EXPECT_THAT(mShown, HasSubstr("No Workgroup Available"));
}

TEST_F(DialogsTest, OnlyACommandThatIsOfferedCanBeChosen) {
    for (const int command : {3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
        const std::string number = std::to_string(command);
        Expect("CommandBox 30", number, {R"({"command": )" + number + "}"}, {number + "\n"});
    }
    Expect("CommandBox 7", "5", {}, {"13\n0\n1\n5\n"}, {"Check Document's Fonts"});
    Expect("CommandBox -2", "3", {}, {"4\n3\n"}, {"Create Document Set...|Collect Fonts for Output..."});
    Expect("CommandBox none", "6", {}, {"3\n4\n5\n6\n"}, {"Check Document's Fonts|Preferences..."});
    Expect("CommandBox 30", "8", {}, {}, {"Select Workgroup"});
    Expect("CommandBox 0", "9", {}, {}, {"Print|Select Library"});
    Expect("CommandBox 30", "no", {"false"}, {"\n", "q\n", "", "nothing\n"}, {"Close", "-|Select Workgroup"});
    Expect("CommandBox -2", "no, reported", {R"({"command": 4})"});
    Expect("CommandBox offline", "no, reported", {R"({"command": 5})", R"({"command": 8})"});
    Expect("CommandBox none", "no, reported",
           {R"({"command": 5})", R"({"command": 13})", R"({"command": "6"})", "true", "6"});
    Expect("CommandBox offline", "7", {R"({"command": 7})"}, {"8\n7\n"}, {"About..."});
}

TEST_F(DialogsTest, PreferencesThatChangeAreStoredTogetherAndNoOthers) {
    Expect("Preferences", R"(yes {"EnableLogging":true,"EnablePlugin":false})",
           {R"({"EnableLogging": true, "PickBestMatch": false, "EnablePlugin": false, "LastUsername": "ana",
                  "CS5PanelWidth": true})"},
           {"1\n4\n4\n99\nkeep\nkeep\nkeep\n\n"},
           {"Activate fonts automatically|Keep a log for troubleshooting|OK"});
    Expect("Preferences", R"(yes {"EnablePlugin":true})", {"true"}, {"\n"}, {"OK"});
    Expect("Preferences", R"(no {"EnablePlugin":true})", {"false"}, {"1\n4\nq\n", "1\n", "1\ncancel\n", ""},
           {"Activate fonts automatically|Cancel"});
    Expect("Preferences", R"(no {"EnablePlugin":true}, reported)",
           {R"({"EnableLogging": true, "EnablePlugin": 1})", "[]", "1"});
}

TEST_F(DialogsTest, FontsAreResolvedAsAnsweredAndAllOthersSkipped) {
    Expect("ResolveFonts", "yes Garamond=Arial Garamond=Arial Lost Helvetica",
           {R"({"replacements": {"Garamond": "Arial"}})"}, {"arial\n\n", "huh\n1\n\n"},
           {"Arial (Family, 2.1)|OK"});
    Expect("ResolveFonts", "yes Garamond=Zapf Helvetica=Zapf Garamond=Zapf Lost",
           {R"({"replacements": {"Garamond": "Zapf", "Helvetica": "Zapf"}})"}, {"4\n3\n2\n"},
           {"Zapf (Family, 2.1)|OK"});
    Expect("ResolveFonts", "yes Garamond Lost Helvetica Garamond", {"true", R"({"replacements": {}})"},
           {"\n\n"}, {"OK", "Zapf (Family, 2.1)|Do not replace|OK"});
    Expect("ResolveFonts", "no Garamond Lost Helvetica Garamond", {"false"}, {"1\nq\n", "1\n", ""},
           {"Zapf (Family, 2.1)|Cancel"});
    Expect("ResolveFonts", "no Garamond Lost Helvetica Garamond, reported",
           {R"({"replacements": {"Garamond": "Zapf", "Helvetica": "Arial"}})",
            R"({"replacements": {"Lost": "Zapf"}})", R"({"replacements": {"Other": "Zapf"}})",
            R"({"replacements": {"Garamond": 1}})", R"({"replacements": ["Zapf"]})", "{}", "[]", "1"});
}

TEST_F(DialogsTest, AFolderThatIsNamedOrProposedIsChosen) {
    const std::string file = mFolder / "file", folder = mFolder / "für den Druck";
    const auto quoted = [](const std::string& path) { return "'" + platform::FullPath(path) + "'"; };
    WriteText(file, "");
    Expect("ChooseFolder", quoted("/neu"), {R"({"folder": "/für/../neu/"})"}, {"/neu\n"});
    Expect("ChooseFolder /ü/before", quoted("/ü/before"), {"true"}, {"\n"});
    Expect("ChooseFolder", quoted(folder), {}, {folder + "\n", file + "\n" + folder}, {folder});
    Expect("ChooseFolder", "''", {R"({"folder": null})"}, {}, {"?"});
    Expect("ChooseFolder /before", "no", {"false"}, {"q\n", ""}, {""});
    Expect("ChooseFolder", "no", {}, {"\n"});
    Expect("ChooseFolder", "no, reported", {}, {"\377\n"});
    Expect(
        "ChooseFolder", "no, reported",
        {json({{"folder", file}}).dump(), "true", R"({"folder": ""})", R"({"folder": 1})", "{}", R"("/x")"});

    AskAtTerminal("ChooseFolder", file + "\n");
    EXPECT_THAT(mShown, HasSubstr("file cannot be used as a folder.\n"));
}

TEST_F(DialogsTest, WhatIsShownSaysWhatIsChosenAndWhatStandsNow) {
    const struct {
        const char *dialog, *typed, *onTerminal, *inWindow;
    } cases[] = {
        {"Question", "huh\n", "1: Yes  2: No  [2] That is not one of the choices.\n",
         "Log in now?\n<Yes> <No>"},
        {"About", "", "Quillon Type Client\nPlug-in version 8.0.1\nActivates", "<OK> by default"},
        {"Preferences", "1\n", "   1  Activate fonts automatically  [off]\n", "[x] Activate fonts"},
        {"SelectWorkgroup 7", "x\n", "\n   2  Print\n*  3  Print 2024[2J\n   4  2\n",
         "o Print\n* Print 2024"},
        {"CommandBox 30", "", "\nSelect Workgroup\n*  8  Personal Library\n   9  Print\n  10  \n  11",
         "Current workgroup: Personal Library\n* Personal Library\no Print\n"},
        {"CommandBox 30", "", "Current workgroup: Personal Library\n   3  Collect",
         "<Select Workgroup>\n<Close>\n"},
        {"CommandBox offline", "", "Client\nOffline\n   6  Preferences...\n   7  About...\nNumber",
         "Client\nOffline\n<Preferences...>\n<About...>\n<Close> by default\n"},
        {"ResolveFonts", "\n", "No replacement was found for Lost.\nHelvetica can be",
         "Garamond can be replaced with: *Do not replace oArial (Family, 2.1) oArial-Bold"},
        {"RestrictedFonts new", "", "new in the document", "\n- Garamond\n- Lost\n"},
        {"ChooseFolder /ü", "",
         "exactly?\nFolder, Enter for /ü, q to cancel: ", "Where to... exactly?\n/ü\n"}};
    for (const auto& each : cases) {
        AskAtTerminal(each.dialog, each.typed);
        EXPECT_THAT(mShown, HasSubstr(each.onTerminal));
        AskInWindow(each.dialog, "");
        EXPECT_THAT(mShown, HasSubstr(each.inWindow));
    }
    AskAtTerminal("CommandBox none", "");
    EXPECT_THAT(mShown, testing::Not(testing::AnyOf(HasSubstr("Current workgroup"), HasSubstr("*"),
                                                    HasSubstr("Check"))));
    AskAtTerminal("RestrictedFonts", "");
    EXPECT_THAT(mShown, testing::Not(HasSubstr("new in the document")));
}

TEST_F(DialogsTest, MessagesAreInTheUsersLanguageAndNameTheirSubjectWhateverItHolds) {
    std::istringstream input("j\n1\n\n");
    std::ostringstream output;
    TarnwickFramework framework =
        With(std::make_unique<TerminalPresenter>(Terminal::Streams{input, output, false}, "de"), "de");
    EXPECT_EQ(framework.ShowMessageBox(609, 610, MessageBoxButtons::kYesNo), 1);
    EXPECT_THAT(output.str(), HasSubstr("Nicht angemeldet\n"));
    framework.ShowMessageAbout(1, 650, cf::String("/100%s %n\033[31m/ü").get());
    EXPECT_THAT(output.str(), HasSubstr("Message 1\n"));
    EXPECT_THAT(output.str(), HasSubstr(" /100%s %n[31m/ü "));
    EXPECT_EQ(cf::ToUtf8(AdoptCF(framework.CopyLocalizedString(208)).get()), "Arbeitsgruppe auswählen");
    EXPECT_EQ(framework.CopyLocalizedString(1), nullptr);
    std::filesystem::create_directories(platform::Utf8Path(mFolder / "Preferences.json"));
    EXPECT_FALSE(framework.ShowPreferences()) << "they cannot be stored, which is told";
    EXPECT_THAT(output.str(), HasSubstr(platform::Utf8Text(mFolder.Path())));
}

class ThrowingPresenter : public Presenter {
public:
    int32_t AskMessageBox(const MessageBoxQuestion&) override { throw std::runtime_error("box"); }
    bool AskDialog(Dialog&) override { throw 5; }
    bool ShowProgress(const ProgressStep&) override { throw 5; }
};

TEST_F(DialogsTest, NullArgumentsAndExceptionsEndAtTheBorder) {
    const auto throwing = std::make_unique<ThrowingPresenter>;
    for (const char* dialog :
         {"About", "SelectWorkgroup 7", "CommandBox 7", "RestrictedFonts", "ChooseFolder"})
        EXPECT_EQ(Ask(With(throwing()), dialog), "no") << dialog;
    EXPECT_EQ(Ask(With(throwing()), "Preferences"), R"(no {"EnablePlugin":true})");
    EXPECT_EQ(Ask(With(throwing()), "ResolveFonts"), "no Garamond Lost Helvetica Garamond");
    EXPECT_EQ(Ask(With(throwing()), "Question") + Ask(With(throwing()), "Notice"), "21");
    TarnwickFramework framework = With(throwing());
    const auto fonts = cf::MutableArray();
    EXPECT_TRUE(framework.ShowProgress(204, 1, 2)) << "the work matters more than its display";
    framework.ShowMessageAbout(204, 650, nullptr);
    EXPECT_FALSE(framework.ShowSelectWorkgroup(mWorkgroups.get(), nullptr) ||
                 framework.ShowCommandBox(nullptr, nullptr) ||
                 framework.ShowRestrictedFonts(nullptr, false) ||
                 framework.ShowChooseFolder(nullptr, nullptr, nullptr) ||
                 framework.ShowResolveFonts(nullptr, fonts.get(), fonts.get()) ||
                 framework.ShowResolveFonts(mFonts.get(), nullptr, fonts.get()) ||
                 framework.GetBoolPreference(nullptr) || framework.GetIntPreference(nullptr) ||
                 framework.SetIntPreference(nullptr, 1) || framework.SetStringPreference("Key", nullptr));
    EXPECT_TRUE(AdoptCF(framework.CopyStringPreference(nullptr)));
    EXPECT_TRUE(framework.RegisterDefaults(nullptr));
}

}  // namespace
