#include "Settings.h"

#include <nlohmann/json.hpp>

#include "FakeWorld.h"
#include "Preferences.h"

namespace {

class SettingsTest : public FakeWorld {
protected:
    SettingsTest() { MakeFunctional(); }

    static std::string AllSettings() {
        char buffer[2048] = "";
        size_t size = sizeof buffer;
        EXPECT_EQ(Settings::GetSettings(buffer, &size), CoreErrorCodes::kSuccess);
        return buffer;
    }
};

}  // namespace

TEST_F(SettingsTest, SettingsFitOrAreCut) {
    framework.numbers["CS5PanelWidth"] = -3;
    const std::string whole = AllSettings();
    const auto settings = nlohmann::json::parse(whole);
    EXPECT_EQ(settings.size(), std::size(preferences::kAll));
    EXPECT_EQ(settings["CS5PanelWidth"], "-3");
    for (const size_t room : {whole.size() + 1, whole.size(), size_t{20}, size_t{1}, size_t{0}}) {
        std::string buffer(whole.size() + 2, '#');
        size_t size = room;
        EXPECT_EQ(Settings::GetSettings(buffer.data(), &size),
                  room > whole.size() ? CoreErrorCodes::kSuccess : CoreErrorCodes::kIndexOutOfRange);
        const std::string written = room == 0 ? "" : whole.substr(0, room - 1) + '\0';
        EXPECT_EQ(buffer, written + std::string(buffer.size() - written.size(), '#'));
    }
}

TEST_F(SettingsTest, NumbersAreStoredAndOtherValuesRefused) {
    for (const auto& [value, number] :
         {std::pair{"-12", -12}, {" +7 ", 7}, {"-2147483648", INT32_MIN}, {"0", 0}}) {
        EXPECT_EQ(Settings::SetPreference("CS5PanelWidth", value), CoreErrorCodes::kSuccess);
        EXPECT_EQ(framework.numbers["CS5PanelWidth"], number);
    }
    // Numbers of 32 bits, of which one stands for none.
    for (const char* value : {"", "yes", "1x", "+-1", "1 2", "4294967296", "2147483648", "-2147483647"})
        EXPECT_EQ(Settings::SetPreference("CS5PanelWidth", value), CoreErrorCodes::kInvalidParam) << value;
    EXPECT_EQ(framework.numbers["CS5PanelWidth"], 0);
    EXPECT_EQ(Settings::SetPreference("NoSuchKey", "1"), CoreErrorCodes::kInvalidParam);
    EXPECT_FALSE(framework.numbers.contains("NoSuchKey"));
    EXPECT_EQ(Settings::SetPreference("LastUsername", "Zoë"), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(framework.texts["LastUsername"], "Zoë") << "texts are stored and refused all the same";
    EXPECT_THAT(trace.Text(), testing::Not(testing::HasSubstr("could not be stored")));
    framework.isStoreUsable = false;
    EXPECT_EQ(Settings::SetPreference("RMF4", "9"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(Settings::SetPreference("LastUsername", "Zoë"), CoreErrorCodes::kInvalidParam);
    for (const char* key : {"RMF4", "LastUsername"})
        EXPECT_THAT(trace.Text(), testing::HasSubstr(std::string("ERROR:  the preference '") + key +
                                                     "' could not be stored\n"));
}

TEST_F(SettingsTest, DefaultsAreRegisteredOnce) {
    Settings::RegisterDefaults();
    EXPECT_EQ(cf::ToUtf8(AdoptCF(CFCopyDescription(framework.registeredDefaults.get())).get()),
              "{EnablePlugin = true, EnableGlyphscan = true, PickBestMatch = true, SupportEmbeddedObjects = "
              "true, CloseFontsOnHostAppQuit = true, CloseFontsOnDocClose = false, ActivateEntireFamilies = "
              "false, DialogSuppression = true, CS5PanelWidth = 260, CS5PanelHeight = 350, "
              "DropDownSelection = false}");
    framework.registeredDefaults.reset();
    Settings::RegisterDefaults();
    EXPECT_FALSE(framework.registeredDefaults);
}

TEST_F(SettingsTest, TheWorkgroupMayBeNamed) {
    library.workgroups = {{7, kWorkgroupType_FontLibrary, "Print"},
                          {4, kWorkgroupType_System, "System Fonts"}};
    EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", "Print"), CoreErrorCodes::kSuccess);
    for (const char* name : {"string 213", "System Fonts", "No Such Workgroup", ""})
        EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", name), CoreErrorCodes::kInvalidParam) << name;
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 7);
    EXPECT_EQ(Settings::SetPreference("RMF4", "Print"), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(Settings::SetPreference("CurrentWorkgroup", "12"), CoreErrorCodes::kSuccess);
}
