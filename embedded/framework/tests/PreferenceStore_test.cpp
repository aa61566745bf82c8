#include "preferences/PreferenceStore.h"

#include <gtest/gtest.h>

#include <limits>

#include "CapturedTrace.h"
#include "Records.h"
#include "TemporaryFolder.h"
#include "library/TarnwickFramework.h"
#include "platform/Utf8Path.h"
#include "presenters/SilentPresenter.h"

namespace {

using nlohmann::json;

class PreferenceStoreTest : public testing::Test {
protected:
    json Stored() const { return json::parse(ContentOf(mPath)); }

    TemporaryFolder mFolder;
    const std::string mPath = mFolder / "Preferences.json";
    PreferenceStore mStore{platform::Utf8Text(mFolder.Path()), "com.vantorix.Plugin", "Illustrator2025"};
};

TEST_F(PreferenceStoreTest, EachPlugInAndHostHasItsOwnValuesAndForeignOnesAreKept) {
    WriteText(mPath,
              R"({"com.vantorix.Plugin": {"Other": {"Key": [1, {"kept": null}]}, "Illustrator2025": 7}})");
    PreferenceStore otherPlugin(platform::Utf8Text(mFolder.Path()), "com.vantorix.Other", "Illustrator2025");
    PreferenceStore unknown(platform::Utf8Text(mFolder.Path()), "", "\xFF");
    int value = 0;
    for (PreferenceStore* store : {&mStore, &otherPlugin, &unknown}) {
        EXPECT_TRUE(store->Set("Key", ++value));
        EXPECT_EQ(store->GetInt("Key"), value);
    }
    EXPECT_EQ(Stored(), json::parse(R"({
        "com.vantorix.Plugin": {"Other": {"Key": [1, {"kept": null}]}, "Illustrator2025": {"Key": 1}},
        "com.vantorix.Other": {"Illustrator2025": {"Key": 2}},
        "Unknown": {"\uFFFD": {"Key": 3}}})"));
}

TEST_F(PreferenceStoreTest, ReadersAreTolerantOfOtherTypes) {
    const int64_t least = std::numeric_limits<int64_t>::min();
    const std::tuple<json, bool, int64_t, std::string> cases[] = {
        {false, false, 0, ""},      {-3, true, -3, ""},      {least, true, least, ""},
        {0.5, true, 0, ""},         {-2.9, true, -2, ""},    {0x1p63, true, 0, ""},
        {"12", false, 0, "12"},     {nullptr, false, 0, ""}, {json::object(), false, 0, ""},
        {UINT64_MAX, false, 0, ""}, {true, true, 1, ""},     {-0x1p63, true, least, ""}};
    for (const auto& [value, asBool, asInt, asString] : cases) {
        ASSERT_TRUE(mStore.Set("Key", value));
        EXPECT_EQ(mStore.GetBool("Key"), asBool) << value;
        EXPECT_EQ(mStore.GetInt("Key"), asInt) << value;
        EXPECT_EQ(mStore.GetString("Key"), asString) << value;
    }
    EXPECT_FALSE(mStore.GetBool("Missing") || mStore.GetInt("Missing"));
}

TEST_F(PreferenceStoreTest, DefaultsAreRegisteredOnceAndAgainWhenTheFileWasLost) {
    CapturedTrace log;
    const json defaults = {{"EnablePlugin", true}, {"Width", 260}};
    ASSERT_TRUE(mStore.Set("EnablePlugin", false));
    EXPECT_FALSE(mStore.AreDefaultsRegistered());
    EXPECT_TRUE(mStore.RegisterDefaults(defaults));
    EXPECT_TRUE(mStore.AreDefaultsRegistered());
    EXPECT_FALSE(mStore.GetBool("EnablePlugin")) << "what the user has set stays";
    EXPECT_EQ(mStore.GetInt("Width"), 260);
    EXPECT_FALSE(PreferenceStore(platform::Utf8Text(mFolder.Path()), "com.vantorix.Plugin", "Other")
                     .AreDefaultsRegistered());

    WriteText(mPath, ContentOf(mPath).substr(0, 30));
    EXPECT_FALSE(mStore.AreDefaultsRegistered());
    EXPECT_TRUE(mStore.RegisterDefaults(defaults));
    EXPECT_TRUE(mStore.GetBool("EnablePlugin"));
}

TEST_F(PreferenceStoreTest, TheFrameworkTakesAndGivesObjects) {
    TarnwickFramework framework({"com.vantorix.Plugin", "Illustrator2025", ""},
                                platform::Utf8Text(mFolder.Path()), "en",
                                std::make_unique<SilentPresenter>());
    EXPECT_TRUE(framework.SetBoolPreference("Bool", true) && framework.SetIntPreference("Int", -5000000000) &&
                framework.SetStringPreference("String", cf::String("Grüße 😀").get()));
    EXPECT_EQ(cf::ToUtf8(AdoptCF(framework.CopyStringPreference("String")).get()), "Grüße 😀");

    const auto defaults = Record("EnablePlugin", true, "Text", "ü", "Wrong", List());
    EXPECT_FALSE(framework.RegisterDefaults(defaults.get())) << "as a whole or not at all";
    EXPECT_FALSE(framework.GetBoolPreference("EnablePlugin"));
    cf::Set(defaults, "Wrong", 1.5);
    EXPECT_TRUE(framework.RegisterDefaults(defaults.get()));
    EXPECT_EQ(Stored()["com.vantorix.Plugin"]["Illustrator2025"],
              json::parse(
                  R"({"EnablePlugin": true, "Text": "ü", "Wrong": 1.5, "Bool": true, "Int": -5000000000,
            "String": "Grüße 😀", "DefaultsRegistered": true})"));
}

}  // namespace
