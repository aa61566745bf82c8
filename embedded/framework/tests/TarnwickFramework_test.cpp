#include "library/TarnwickFramework.h"

#include <CoreFoundation++/CFRef.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "DialogTestSupport.h"
#include "FrameworkTestSupport.h"
#include "presenters/ScriptedPresenter.h"

namespace {

using nlohmann::json;

class ThrowingPresenter : public Presenter {
public:
    int32_t AskMessageBox(const MessageBoxQuestion&) override { throw std::runtime_error("box"); }
    DialogAnswer AskDialog(const DialogQuestion&) override { throw 5; }
    bool ShowProgress(const ProgressStep&) override { throw 5; }
};

class TarnwickFrameworkTest : public testing::Test {
protected:
    TarnwickFramework With(std::unique_ptr<Presenter> presenter, const std::string& language = "en") const {
        return {{"com.vantorix.Plugin", "Illustrator2025", "8.0"},
                platform::Utf8Text(mFolder.Path()),
                language,
                std::move(presenter)};
    }
    TarnwickFramework WithAnswers(const json& answers) const {
        return With(std::make_unique<ScriptedPresenter>(answers));
    }

    TemporaryFolder mFolder;
    CapturedTrace mLog;
};

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
    const auto workgroups = Records({WorkgroupRecord(3, "Name")});
    const auto fonts = MissingFonts();
    const auto resolved = cf::MutableArray();
    const auto skipped = cf::MutableArray();
    CFStringRef folder = nullptr;
    int32_t number = 42;
    EXPECT_EQ(framework.ShowMessageBox(604, 605, MessageBoxButtons::kYesNo), 2);
    EXPECT_EQ(framework.ShowMessageBox(600, 601, MessageBoxButtons::kOk), 1);
    EXPECT_FALSE(framework.ShowAbout());
    EXPECT_FALSE(framework.ShowSelectWorkgroup(workgroups.get(), &number));
    EXPECT_FALSE(framework.ShowSelectWorkgroup(nullptr, &number));
    EXPECT_FALSE(framework.ShowSelectWorkgroup(workgroups.get(), nullptr));
    EXPECT_FALSE(framework.ShowCommandBox(nullptr, &number));
    EXPECT_FALSE(framework.ShowCommandBox(nullptr, nullptr));
    framework.ShowMessageAbout(204, 650, nullptr);
    EXPECT_TRUE(framework.ShowProgress(204, 1, 2)) << "the work matters more than its display";
    EXPECT_FALSE(framework.ShowPreferences());
    EXPECT_FALSE(framework.ShowRestrictedFonts(nullptr, false));
    EXPECT_FALSE(framework.ShowChooseFolder(nullptr, nullptr, &folder));
    EXPECT_FALSE(framework.ShowChooseFolder(nullptr, nullptr, nullptr));
    EXPECT_EQ(folder, nullptr);
    EXPECT_FALSE(framework.ShowResolveFonts(nullptr, resolved.get(), skipped.get()));
    EXPECT_FALSE(framework.ShowResolveFonts(fonts.get(), nullptr, skipped.get()));
    EXPECT_FALSE(framework.ShowResolveFonts(fonts.get(), resolved.get(), nullptr));
    EXPECT_FALSE(framework.ShowResolveFonts(fonts.get(), resolved.get(), skipped.get()));
    EXPECT_EQ(Names(resolved).size(), 0u);
    EXPECT_EQ(Names(skipped).size(), 3u) << "no font is lost";
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

}  // namespace
