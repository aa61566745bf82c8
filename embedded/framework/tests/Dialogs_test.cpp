// What answers from a file mean to the dialogs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DialogTestSupport.h"
#include "FrameworkTestSupport.h"
#include "library/TarnwickFramework.h"
#include "platform/Folders.h"
#include "presenters/ScriptedPresenter.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DialogsTest : public testing::Test {
protected:
    /// A framework that answers one question about `dialog`; `answer` is JSON.
    TarnwickFramework Answering(const char* dialog, const std::string& answer) const {
        const json answers = {{{"dialog", dialog}, {"answer", json::parse(answer)}}};
        return {{"com.vantorix.Plugin", "Illustrator2025", "8.0"},
                platform::Utf8Text(mFolder.Path()),
                "en",
                std::make_unique<ScriptedPresenter>(answers)};
    }
    /// Whether the last answer was reported as wrong, which an answer that says no is not.
    bool WasReported() {
        const bool wasReported = mLog.Text().find("means nothing") != std::string::npos;
        mLog.Clear();
        return wasReported;
    }

    TemporaryFolder mFolder;
    const std::string mPreferences = mFolder / "Preferences.json";
    CapturedTrace mLog;
};

TEST_F(DialogsTest, OnlyAWorkgroupOfTheListCanBeChosen) {
    const auto workgroups = Records({WorkgroupRecord(3, "Name"), WorkgroupRecord(7, "Name")});
    const auto choose = [&](const std::string& answer, int32_t current) {
        const bool isConfirmed =
            Answering("SelectWorkgroup", answer).ShowSelectWorkgroup(workgroups.get(), &current);
        return std::pair(isConfirmed, current);
    };
    EXPECT_EQ(choose(R"({"workgroupID": 3})", 7), std::pair(true, 3));
    EXPECT_EQ(choose("true", 7), std::pair(true, 7));
    for (const char* no : {"false", "null"}) {
        EXPECT_EQ(choose(no, 7), std::pair(false, 7));
        EXPECT_FALSE(WasReported()) << no;
    }
    EXPECT_EQ(choose("true", 1), std::pair(false, 1)) << "the current one is not in the list";
    for (const char* wrong : {R"({"workgroupID": 8})", R"({"workgroupID": "3"})",
                              R"({"workgroupID": 4294967299})", "{}", "3", "[]", R"("Name")"}) {
        EXPECT_EQ(choose(wrong, 7), std::pair(false, 7)) << wrong;
        EXPECT_TRUE(WasReported()) << wrong;
    }
}

TEST_F(DialogsTest, OnlyACommandThatIsOfferedCanBeChosen) {
    const auto state = cf::MutableDictionary();
    const auto choose = [&](const std::string& answer) {
        int32_t command = -1;
        const bool isConfirmed = Answering("CommandBox", answer).ShowCommandBox(state.get(), &command);
        EXPECT_EQ(isConfirmed, command != -1);
        return command;
    };
    cf::Set(state, "Workgroups", Records({cf::MutableDictionary(), WorkgroupRecord(-2, "Name")}));
    EXPECT_EQ(choose(R"({"command": 6})"), 6);
    EXPECT_EQ(choose(R"({"command": 9})"), 9) << "a record that says nothing still has its place";
    EXPECT_EQ(choose("false"), -1);
    EXPECT_FALSE(WasReported());
    for (const char* wrong :
         {R"({"command": 5})", R"({"command": 10})", R"({"command": "6"})", "true", "6"}) {
        EXPECT_EQ(choose(wrong), -1) << wrong;
        EXPECT_TRUE(WasReported()) << wrong;
    }
    cf::Set(state, "ButtonsEnabled", true);
    EXPECT_EQ(choose(R"({"command": 4})"), 4);
    cf::Set(state, "CurrentWorkgroupID", -2);
    EXPECT_EQ(choose(R"({"command": 4})"), -1) << "no set can be made of that workgroup";
    EXPECT_EQ(choose(R"({"command": 5})"), 5);
}

TEST_F(DialogsTest, PreferencesThatChangeAreStoredTogetherAndNoOthers) {
    const auto stored = [this] {
        return json::parse(ReadText(mPreferences))["com.vantorix.Plugin"]["Illustrator2025"];
    };
    TarnwickFramework framework = Answering("Preferences", R"({"EnableLogging": true, "PickBestMatch": false,
        "EnablePlugin": false, "LastUsername": "ana", "CS5PanelWidth": true})");
    framework.SetIntPreference("EnablePlugin", 1);
    EXPECT_TRUE(framework.ShowPreferences());
    EXPECT_EQ(stored(), json({{"EnableLogging", true}, {"EnablePlugin", false}}));
    EXPECT_THAT(mLog.Text(), HasSubstr("no switch 'LastUsername'"));
    EXPECT_THAT(mLog.Text(), HasSubstr("no switch 'CS5PanelWidth'"));
    EXPECT_TRUE(Answering("Preferences", "true").ShowPreferences());
    for (const char* wrong : {R"({"EnableLogging": false, "EnablePlugin": 1})", "[]", "1"}) {
        EXPECT_FALSE(Answering("Preferences", wrong).ShowPreferences()) << wrong;
        EXPECT_TRUE(WasReported()) << wrong;
    }
    EXPECT_EQ(stored(), json({{"EnableLogging", true}, {"EnablePlugin", false}}));
}

TEST_F(DialogsTest, FontsAreResolvedAsAnsweredAndAllOthersSkipped) {
    RecordList resolved, skipped;
    const auto resolve = [&](const std::string& answer) {
        resolved = cf::MutableArray();
        skipped = cf::MutableArray();
        return Answering("ResolveFonts", answer)
            .ShowResolveFonts(MissingFonts().get(), resolved.get(), skipped.get());
    };
    EXPECT_TRUE(resolve(R"({"replacements": {"Helvetica": "Zapf"}})"));
    EXPECT_THAT(Names(resolved), ElementsAre("Helvetica"));
    EXPECT_THAT(Names(skipped), ElementsAre("Garamond", "Lost"));
    EXPECT_EQ(ReplacementOf(resolved, 0), "Zapf");
    EXPECT_TRUE(cf::GetDictionary(cf::Get<CFDictionaryRef>(resolved.get(), 0), kGS_PossibleReplacementsKey))
        << "the record is whole";
    for (const char* none : {"true", R"({"replacements": {}})"}) {
        EXPECT_TRUE(resolve(none));
        EXPECT_THAT(Names(skipped), ElementsAre("Garamond", "Lost", "Helvetica"));
    }
    for (const char* wrong :
         {R"({"replacements": {"Garamond": "Zapf", "Helvetica": "Arial"}})",
          R"({"replacements": {"Lost": "Zapf"}})", R"({"replacements": {"Other": "Zapf"}})",
          R"({"replacements": {"Garamond": 1}})", R"({"replacements": ["Zapf"]})", "{}", "[]", "1"}) {
        EXPECT_FALSE(resolve(wrong)) << wrong;
        EXPECT_THAT(Names(resolved), IsEmpty()) << wrong;
        EXPECT_THAT(Names(skipped), ElementsAre("Garamond", "Lost", "Helvetica")) << wrong;
        EXPECT_TRUE(WasReported()) << wrong;
    }
    EXPECT_FALSE(resolve("false"));
    EXPECT_FALSE(WasReported());
}

TEST_F(DialogsTest, AFolderThatIsNamedOrProposedIsChosen) {
    const auto choose = [&](const std::string& answer, const char* initialFolder) {
        const auto initial = cf::String(initialFolder);
        CFStringRef folder = nullptr;
        const bool isConfirmed =
            Answering("ChooseFolder", answer).ShowChooseFolder(CFSTR("Where?"), initial.get(), &folder);
        const auto owned = AdoptCF(folder);
        EXPECT_EQ(isConfirmed, folder != nullptr);
        return cf::ToUtf8(folder);
    };
    EXPECT_EQ(choose(R"({"folder": "/für/../neu/"})", ""), platform::FullPath("/neu"));
    EXPECT_EQ(choose("true", "/before"), platform::FullPath("/before"));
    EXPECT_EQ(choose(R"({"folder": null})", "/before"), "") << "chosen, but no folder of a file system";
    WriteText(mFolder / "file", "");
    for (const std::string& wrong :
         {json({{"folder", mFolder / "file"}}).dump(), std::string("true"), std::string(R"({"folder": ""})"),
          std::string(R"({"folder": 1})"), std::string("{}"), std::string(R"("/x")")}) {
        EXPECT_EQ(choose(wrong, ""), "") << wrong;
        EXPECT_TRUE(WasReported()) << wrong;
    }
}

TEST_F(DialogsTest, ADialogWithoutChoicesIsConfirmedOrNot) {
    const auto fonts = Records({FontRecord("Didot")});
    EXPECT_TRUE(Answering("About", "true").ShowAbout());
    EXPECT_TRUE(Answering("RestrictedFonts", "true").ShowRestrictedFonts(fonts.get(), true));
    EXPECT_FALSE(Answering("RestrictedFonts", "false").ShowRestrictedFonts(fonts.get(), true));
    EXPECT_FALSE(WasReported());
    EXPECT_FALSE(Answering("RestrictedFonts", "1").ShowRestrictedFonts(fonts.get(), true));
    EXPECT_TRUE(WasReported());
}

}  // namespace
