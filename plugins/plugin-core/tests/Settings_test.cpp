#include "Settings.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "FakeWorld.h"

namespace {

using SettingsTest = FakeWorld;

ErrorCode GetSettings(char* buffer, size_t size) {
    return Settings::GetSettings(buffer, &size);
}

std::string AllSettings() {
    char buffer[2048] = "";
    EXPECT_EQ(GetSettings(buffer, sizeof buffer), CoreErrorCodes::kSuccess);
    return buffer;
}

}  // namespace

TEST_F(SettingsTest, DefaultsAreRegisteredOnce) {
    MakeFunctional();
    framework.numbers = {{"CloseFontsOnDocClose", 1}};
    Settings::RegisterDefaults();
    const auto settings = nlohmann::json::parse(AllSettings());
    EXPECT_EQ(settings.size(), 31u);
    EXPECT_EQ(settings["EnablePlugin"], "1");
    EXPECT_EQ(settings["CS5PanelHeight"], "350");
    EXPECT_EQ(settings["CloseFontsOnDocClose"], "1") << "a value that is there is kept";
    framework.numbers.clear();
    Settings::RegisterDefaults();
    EXPECT_EQ(nlohmann::json::parse(AllSettings())["EnablePlugin"], "0");
}

TEST_F(SettingsTest, SettingsComeInTheirOrderAndFitOrAreCut) {
    MakeFunctional();
    const std::string whole = AllSettings();
    EXPECT_THAT(whole,
                testing::StartsWith(R"({"EnablePlugin":"1","EnableGlyphscan":"0","PickBestMatch":"0",)"));
    EXPECT_THAT(whole, testing::EndsWith(R"("LastPort":"0","LastUsername":"0"})"));
    for (const size_t size : {whole.size(), whole.size() - 1, size_t{20}, size_t{1}}) {
        std::string buffer(whole.size() + 2, '#');
        EXPECT_EQ(GetSettings(buffer.data(), size), CoreErrorCodes::kIndexOutOfRange) << size;
        EXPECT_EQ(buffer.substr(size), std::string(buffer.size() - size, '#')) << "written beyond the buffer";
        EXPECT_EQ(buffer.substr(0, size), (whole.substr(0, size - 1) + '\0').substr(0, size));
    }
    char nothing = '#';
    EXPECT_EQ(GetSettings(&nothing, 0), CoreErrorCodes::kIndexOutOfRange);
    EXPECT_EQ(nothing, '#');
    std::string buffer(whole.size() + 1, '#');
    EXPECT_EQ(GetSettings(buffer.data(), buffer.size()), CoreErrorCodes::kSuccess);
}

TEST_F(SettingsTest, NumbersAreStoredAndOtherValuesIgnored) {
    MakeFunctional();
    EXPECT_EQ(Settings::SetPreference("PickBestMatch", "0"), CoreErrorCodes::kSuccess);
    EXPECT_EQ(Settings::SetPreference("CS5PanelWidth", "-12"), CoreErrorCodes::kSuccess);
    EXPECT_EQ(framework.numbers["CS5PanelWidth"], -12);
    EXPECT_EQ(Settings::SetPreference("RMF4", "-2147483648"), CoreErrorCodes::kSuccess);
    // Numbers of 32 bits, of which one stands for none.
    for (const char* value :
         {"", "yes", "1x", " 1", "99999999999999999999", "4294967296", "2147483648", "-2147483647"})
        EXPECT_EQ(Settings::SetPreference("CS5PanelWidth", value), CoreErrorCodes::kInvalidParam) << value;
    EXPECT_EQ(framework.numbers["CS5PanelWidth"], -12);
    EXPECT_EQ(Settings::SetPreference("NoSuchKey", "1"), CoreErrorCodes::kInvalidParam);
    EXPECT_FALSE(framework.numbers.contains("NoSuchKey"));
}

TEST_F(SettingsTest, TheWorkgroupMayBeNamed) {
    library.workgroups = {{7, kWorkgroupType_FontLibrary, "Print"},
                          {4, kWorkgroupType_System, "System Fonts"}};
    MakeFunctional();
    EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", "Print"), CoreErrorCodes::kSuccess);
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 7);
    for (const char* name : {"string 213", "System Fonts", "No Such Workgroup", ""})
        EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", name), CoreErrorCodes::kInvalidParam)
            << name << ": not one to work in";
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 7);
    EXPECT_EQ(Settings::SetPreference("RMF4", "Print"), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", "12"), CoreErrorCodes::kSuccess);
}

TEST_F(SettingsTest, TextsAreStoredAndRefusedAllTheSame) {
    MakeFunctional();
    framework.isStoreUsable = false;
    EXPECT_EQ(Settings::SetPreference("RMF4", "9"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(Settings::SetPreference("LastUsername", "ana"), CoreErrorCodes::kInvalidParam);
    EXPECT_THAT(trace.Text(),
                testing::HasSubstr("ERROR:  the preference 'LastUsername' could not be stored\n"));
    framework.isStoreUsable = true;
    EXPECT_EQ(Settings::SetPreference("LastUsername", "Zoë"), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(framework.texts["LastUsername"], "Zoë");
}

TEST_F(SettingsTest, NothingIsToldWhileThePluginIsNotFunctional) {
    MakeFunctional();
    MarquellGlobals::SetLoggedIn(false);
    char buffer[2048] = "untouched";
    EXPECT_EQ(GetSettings(buffer, sizeof buffer), CoreErrorCodes::kNotInitialized);
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(Settings::SetPreference("PickBestMatch", "0"), CoreErrorCodes::kNotInitialized);
}
