#include "Menus.h"

#include <nlohmann/json.hpp>

#include "CommandDialog.h"
#include "FakeWorld.h"
#include "HostMenuJSON.h"

using nlohmann::json;
using testing::ElementsAre, testing::HasSubstr;

namespace {

class MenusTest : public FakeWorld {
protected:
    MenusTest() {
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Font Library (LOCALIZE ME)"},
                              {9, kWorkgroupType_FontLibrary, "Print"},
                              {4, kWorkgroupType_System, "System Fonts"},
                              {kWorkgroupID_All, kWorkgroupType_All, "All Fonts"}};
        MakeFunctional();
        fontManager.SetDefaultWorkgroupID(9);
    }
    static json Menu(const std::string& document) {
        char buffer[4096];
        size_t size = sizeof buffer - 1;
        EXPECT_EQ(Menus::GetMenus(document.c_str(), buffer, &size), 0u);
        return json::parse(buffer);
    }
    /// "label title" per item, in parentheses when it is not enabled, with a star when it is checked.
    static std::vector<std::string> Items(const json& items) {
        std::vector<std::string> texts;
        for (const json& item : items) {
            std::string text = item["label"].get<std::string>() + " " + item["title"].get<std::string>();
            text += item["checked"] == true ? "*" : "";
            texts.push_back(item["enabled"] == true ? text : "(" + text + ")");
        }
        return texts;
    }
    void Select(const std::string& label) {
        const json menu = {{"items", {{{"id", "x"}, {"label", label}}}}};
        EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", menu.dump(), "x", ""), 0u);
    }

    FontManagerInterface& fontManager = FontManagerInterface::GetSharedInstance();
};

uint32_t Collect(const char* id, const char* label, void* context) {
    *static_cast<std::string*>(context) += std::string(id) + "=" + label + " ";
    return label == std::string("stop") ? 77 : 0;
}

}  // namespace

TEST_F(MenusTest, CommandsNeedADocumentAPluginThatIsOnAndForSetsAWorkgroup) {
    const auto commands = [](const char* document) { return Items(Menu(document)["child"]); };
    const auto allOff = testing::IsSupersetOf({"(3 string 204)", "(4 string 205)", "(5 string 206)"});
    EXPECT_THAT(commands(""), allOff);
    fontManager.SetDefaultWorkgroupID(kWorkgroupID_All);
    EXPECT_THAT(commands("/d.ai"),
                testing::IsSupersetOf({"3 string 204", "(4 string 205)", "5 string 206", "6 string 200"}));
    framework.numbers["EnablePlugin"] = 0;
    EXPECT_THAT(commands("/d.ai"), allOff);
    EXPECT_THAT(commands("/d.ai"), testing::Contains("2 string 216")) << "standalone: a library";
    library.isStandalone = false;
    EXPECT_THAT(commands("/d.ai"), testing::Contains("2 string 208"));
    EXPECT_THAT(Items(json::array({Menu("/d.ai")})), ElementsAre("1 string 199"));
    EXPECT_THAT(Items(Menu("/d.ai")["child"][0]["child"]),
                ElementsAre("8 string 215", "9 Print", "(0 )", "10 string 212*"));
}

TEST_F(MenusTest, ALengthEqualToTheSizeFits) {
    const size_t length = Menu("/d.ai").dump().size();
    for (const size_t size : {length + 1, length, length - 1, size_t{0}}) {
        std::string buffer(length + 2, '#');
        size_t given = size;
        const ErrorCode code = Menus::GetMenus("/d.ai", buffer.data(), &given);
        EXPECT_EQ(code, size < length ? CoreErrorCodes::kIndexOutOfRange : 0);
        EXPECT_EQ(given, length);
        EXPECT_EQ(buffer.substr(length), size < length ? "##" : std::string("\0#", 2));
        EXPECT_EQ(buffer[0], size < length ? '#' : '{');
    }
}

TEST_F(MenusTest, ChoicesAreCarriedOut) {
    Select("About...");
    Select("string 201");  // in the user's language
    Select("Preferences...");
    EXPECT_THAT(framework.shownDialogs, ElementsAre("About", "About", "Preferences"));
    Select("Print");
    Select("No Such Workgroup");
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 9);
    for (const auto& [command, handler] :
         {std::pair{"Collect Fonts for Output...", "HandleExportDocumentFonts"},
          {"Create Document Set...", "HandleCreateDocumentSet"},
          {"Check Document's Fonts", "HandleCheckDocumentFonts"}}) {
        Select(command);
        EXPECT_THAT(trace.Text(), HasSubstr(std::string(handler) + "(/d.ai, ...)\n"));
    }
    Menu("/d.ai");
    EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", "", "8", ""), 0u);
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 7) << "of the menu that was described last";
}

TEST_F(MenusTest, LoggedOutOnlyTheAboutBoxShowsAndNeverWithoutItsItem) {
    library.isLoggedIn = false;
    for (const char* label : {"About...", "Preferences...", "Collect Fonts for Output...", "Print"})
        Select(label);
    for (const char* none : {"[]", "{", R"({"m":[{"id":"y","label":"About..."}]})",
                             R"({"m":[{"id":"x","label":7}]})", R"({"m":{"id":"x","label":"About..."}})"})
        EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", none, "x", ""), 0u) << none;
    const char* noNull = R"({"m":[{"id":"NULL","label":"About..."}]})";
    EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", noNull, nullptr, ""), 0u);
    EXPECT_THAT(framework.shownDialogs, ElementsAre("About"));
    EXPECT_EQ(framework.shownBoxes, std::vector(3, std::pair(609u, 611u)));
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
}

TEST_F(MenusTest, WhatIsChosenFromBehindADialogIsRefused) {
    framework.whileDialogShows = [this] {
        Select("About...");
        framework.numbers["EnableLogging"] = 1;
    };
    Select("Preferences...");
    EXPECT_THAT(framework.shownDialogs, ElementsAre("Preferences"));
    EXPECT_THAT(library.log, HasSubstr("Exiting PluginCoreInterface::HandleMenuSelection")) << "at once";
    framework.whileDialogShows = [] {
        EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), CoreErrorCodes::kUnknownError);
    };
    EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), 0u);
}

TEST_F(MenusTest, TheCommandBoxShowsTheStateAndRunsWhatIsChosen) {
    framework.chosenCommand = 7;
    EXPECT_EQ(CommandDialog::InvokeCommandDialog("/d.ai"), 0u);
    EXPECT_THAT(framework.shownDialogs, ElementsAre("CommandBox", "About"));
    const CFDictionaryRef state = framework.commandBoxState.get();
    EXPECT_EQ(cf::GetBool(state, "IsLocalPersonal"), true);
    EXPECT_EQ(cf::GetBool(state, "IsOnline"), false) << "there is no server";
    EXPECT_EQ(cf::GetBool(state, "ButtonsEnabled"), true);
    EXPECT_EQ(cf::GetInt64(state, "CurrentWorkgroupID"), 9);
    EXPECT_EQ(cf::Count(cf::GetArray(state, "Workgroups")), 3);
    library.isStandalone = false;
    EXPECT_EQ(CommandDialog::InvokeCommandDialog("/d.ai"), 0u);
    EXPECT_EQ(cf::GetBool(framework.commandBoxState.get(), "IsOnline"), true);
    library.workgroups[1] = {9, kWorkgroupType_FontLibrary, "Font Library (LOCALIZE ME)"};
    framework.chosenCommand = 9;
    EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), 0u);
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 9) << "of two of one name the one that was chosen";
    EXPECT_EQ(cf::GetBool(framework.commandBoxState.get(), "ButtonsEnabled"), false) << "no document";
    for (const int32_t nonsense : {0, 1, -5, 11, INT32_MAX, INT32_MIN}) {
        framework.chosenCommand = nonsense;
        EXPECT_EQ(CommandDialog::InvokeCommandDialog("/d.ai"), 0u) << nonsense;
    }
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 9);
}

TEST(HostMenuJSON, ItemsAreFoundInArraysAtAnyDepth) {
    const CapturedTrace trace;
    std::string deep = R"({"id":"deep","label":"found"})";
    std::string opening;
    for (int depth = 0; depth < 100'000; ++depth) {
        opening += R"({"c":[)";
        deep += "]}";
    }
    std::string huge = R"({"m":[)";
    while (huge.size() < 10'000'000)
        huge += R"({"id":7.5,"label":"Some text for a menu that nobody wants to read"},)";
    const std::tuple<std::string, const char*, ErrorCode> menus[] = {
        {R"({"id":"root","label":"no","menu":[{"id":"a","label":"A","child":[{"id":1,"label":"ü"},
             {"id":"b","label":null},{"label":"no"}]},{"id":"c","label":""}, 5]})",
         "a=A 1=ü c= ", 0},
        {R"({"m":[{"id":1,"label":"stop"},{"id":2,"label":"more"}]})", "1=stop ", 77},
        {opening + deep, "deep=found ", 0},
        {huge, "", CoreErrorCodes::kInvalidParam}};
    for (const auto& [menu, expected, code] : menus) {
        std::string items;
        EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(menu.c_str(), Collect, &items), code);
        EXPECT_EQ(items, expected);
    }
    PluginCoreInterface::MenuObject item;
    EXPECT_EQ(PluginCoreInterface::GetMenuObjectFromRawJSON(opening + deep, "deep", item), 0u);
    EXPECT_EQ(item.label, "found");
    EXPECT_EQ(PluginCoreInterface::GetMenuObjectFromRawJSON(
                  R"({"m":[{"id":"x","label":"first"},{"id":"x","label":"second"}]})", "x", item),
              0u);
    EXPECT_EQ(item.label, "first");
}
