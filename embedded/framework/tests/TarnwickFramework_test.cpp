#include "library/TarnwickFramework.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "FontRecordKeys.h"
#include "FrameworkTestSupport.h"
#include "presenters/ScriptedPresenter.h"

namespace {

using nlohmann::json;

class ThrowingPresenter : public Presenter {
public:
    int32_t AskMessageBox(const MessageBoxQuestion&) override { throw std::runtime_error("box"); }
    DialogAnswer AskDialog(const DialogQuestion&) override { throw 5; }
};

class TarnwickFrameworkTest : public testing::Test {
protected:
    TarnwickFramework With(std::unique_ptr<Presenter> presenter, const std::string& language = "en") const {
        return {{"com.vantorix.Plugin", "Illustrator2025", "8.0"},
                mFolder.Path(),
                language,
                std::move(presenter)};
    }
    TarnwickFramework WithAnswers(const json& answers) const {
        return With(std::make_unique<ScriptedPresenter>(answers));
    }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
};

CFRef<CFMutableArrayRef> TwoWorkgroups() {
    auto workgroups = cf::MutableArray();
    for (const int id : {3, 7}) {
        const auto record = cf::MutableDictionary();
        cf::Set(record, kGS_WorkgroupIDKey, id);
        cf::Set(record, kGS_WorkgroupNameKey, "Name");
        cf::Append(workgroups, record);
    }
    return workgroups;
}

TEST_F(TarnwickFrameworkTest, PreferencesComeBackAsTheyWereStored) {
    TarnwickFramework framework = WithAnswers(json::array());
    EXPECT_TRUE(framework.IsPreferenceStoreUsable());
    EXPECT_TRUE(framework.SetBoolPreference("Bool", true));
    EXPECT_TRUE(framework.SetIntPreference("Int", -5000000000));
    EXPECT_TRUE(framework.SetStringPreference("String", cf::String("Grüße 😀").get()));
    EXPECT_TRUE(framework.GetBoolPreference("Bool"));
    EXPECT_EQ(framework.GetIntPreference("Int"), -5000000000);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(framework.CopyStringPreference("String")).get()), "Grüße 😀");
    const auto missing = AdoptCF(framework.CopyStringPreference("Missing"));
    ASSERT_TRUE(missing);
    EXPECT_EQ(CFStringGetLength(missing.get()), 0);
}

TEST_F(TarnwickFrameworkTest, DefaultsAreTakenAsAWholeOrNotAtAll) {
    TarnwickFramework framework = WithAnswers(json::array());
    const auto defaults = cf::MutableDictionary();
    cf::Set(defaults, "EnablePlugin", true);
    cf::Set(defaults, "CS5PanelWidth", 260);
    cf::Set(defaults, "Wrong", cf::MutableArray());
    EXPECT_FALSE(framework.RegisterDefaults(defaults.get()));
    EXPECT_FALSE(framework.AreDefaultsRegistered());
    EXPECT_FALSE(framework.GetBoolPreference("EnablePlugin"));
    cf::Set(defaults, "Wrong", cf::Number(1));
    EXPECT_TRUE(framework.RegisterDefaults(defaults.get()));
    EXPECT_TRUE(framework.AreDefaultsRegistered());
    EXPECT_EQ(framework.GetIntPreference("CS5PanelWidth"), 260);
    EXPECT_NE(ReadText(mFolder / "Preferences.json").find("\"EnablePlugin\": true"), std::string::npos);
}

TEST_F(TarnwickFrameworkTest, NullArgumentsAndExceptionsEndAtTheBorder) {
    TarnwickFramework framework = With(std::make_unique<ThrowingPresenter>());
    int32_t number = 42;
    EXPECT_EQ(framework.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo), 2);
    EXPECT_EQ(framework.ShowMessageBox(600, 601, MessageBoxButtons::kOk), 1);
    EXPECT_FALSE(framework.ShowAbout());
    EXPECT_FALSE(framework.ShowSelectWorkgroup(TwoWorkgroups().get(), &number));
    EXPECT_FALSE(framework.ShowSelectWorkgroup(nullptr, &number));
    EXPECT_FALSE(framework.ShowSelectWorkgroup(TwoWorkgroups().get(), nullptr));
    EXPECT_FALSE(framework.ShowCommandBox(nullptr, &number));
    EXPECT_FALSE(framework.ShowResolveFonts(nullptr, nullptr, nullptr));
    EXPECT_EQ(number, 42);
    EXPECT_FALSE(framework.GetBoolPreference(nullptr));
    EXPECT_EQ(framework.GetIntPreference(nullptr), 0);
    EXPECT_TRUE(AdoptCF(framework.CopyStringPreference(nullptr)));
    EXPECT_FALSE(framework.SetIntPreference(nullptr, 1));
    EXPECT_FALSE(framework.SetStringPreference("Key", nullptr));
    EXPECT_TRUE(framework.RegisterDefaults(nullptr));
}

TEST_F(TarnwickFrameworkTest, MessagesAreShownInTheUsersLanguage) {
    TarnwickFramework framework = With(std::make_unique<SilentPresenter>(), "de");
    framework.ShowMessageBox(609, 611, MessageBoxButtons::kOk);
    framework.ShowMessageBox(1, 2, MessageBoxButtons::kOk);
    EXPECT_NE(mLog.Text().find("Nicht angemeldet"), std::string::npos);
    EXPECT_NE(mLog.Text().find("Message 1: Message 2"), std::string::npos);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(framework.CopyLocalizedString(208)).get()), "Arbeitsgruppe auswählen");
    EXPECT_EQ(framework.CopyLocalizedString(1), nullptr);
}

TEST_F(TarnwickFrameworkTest, OnlyAWorkgroupOfTheListCanBeChosen) {
    struct Case {
        const char* answer;
        int32_t current;
        bool isConfirmed;
        int32_t chosen;
    };
    for (const Case& each :
         {Case{R"({"workgroupID": 3})", 7, true, 3}, Case{"true", 7, true, 7}, Case{"true", 1, false, 1},
          Case{R"({"workgroupID": 8})", 7, false, 7}, Case{R"({"workgroupID": "3"})", 7, false, 7},
          Case{R"({"workgroupID": 4294967299})", 7, false, 7}, Case{"{}", 7, false, 7},
          Case{"false", 7, false, 7}, Case{"null", 7, false, 7}, Case{"3", 7, false, 7}}) {
        TarnwickFramework framework =
            WithAnswers({{{"dialog", "SelectWorkgroup"}, {"answer", json::parse(each.answer)}}});
        int32_t workgroupID = each.current;
        EXPECT_EQ(framework.ShowSelectWorkgroup(TwoWorkgroups().get(), &workgroupID), each.isConfirmed)
            << each.answer;
        EXPECT_EQ(workgroupID, each.chosen) << each.answer;
    }
}

TEST_F(TarnwickFrameworkTest, TheOtherDialogsPassOnWhatWasAnswered) {
    TarnwickFramework framework = WithAnswers(json::parse(R"([
        {"dialog": "About", "answer": true}, {"dialog": "CommandBox", "answer": {"command": 5}},
        {"dialog": "ResolveFonts", "answer": true}])"));
    int32_t command = 0;
    EXPECT_TRUE(framework.ShowAbout());
    EXPECT_TRUE(framework.ShowCommandBox(cf::MutableDictionary().get(), &command));
    EXPECT_EQ(command, 5);
    EXPECT_FALSE(framework.ShowCommandBox(cf::MutableDictionary().get(), &command));
    EXPECT_FALSE(framework.ShowPreferences());
    EXPECT_FALSE(framework.ShowRestrictedFonts(cf::MutableArray().get(), true));
    EXPECT_FALSE(framework.ShowResolveFonts(cf::MutableArray().get(), nullptr, nullptr));
}

}  // namespace
