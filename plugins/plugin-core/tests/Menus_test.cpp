#include "Menus.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "AllTrackedDocuments.h"
#include "CommandDialog.h"
#include "FakeWorld.h"
#include "HostMenuJSON.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class MenusTest : public FakeWorld {
protected:
    MenusTest() {
        library.workgroups = {{7, kWorkgroupType_FontLibrary, "Font Library (LOCALIZE ME)"},
                              {9, kWorkgroupType_FontLibrary, "Print"},
                              {4, kWorkgroupType_System, "System Fonts"},
                              {kWorkgroupID_All, kWorkgroupType_All, "All Fonts"}};
        MakeFunctional();
        FontManagerInterface::GetSharedInstance().SetDefaultWorkgroupID(9);
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
    void LogOut() { library.isLoggedIn = false; }
};

}  // namespace

TEST_F(MenusTest, TheMenuHoldsCommandsAndWorkgroups) {
    library.isStandalone = false;
    const json menu = Menu("/d.ai");
    EXPECT_EQ(menu["label"], "1");
    EXPECT_EQ(menu["title"], "string 199");
    EXPECT_THAT(Items(menu["child"]), ElementsAre("2 string 208", "3 string 204", "4 string 205",
                                                  "5 string 206", "(0 )", "6 string 200", "7 string 201"));
    EXPECT_THAT(Items(menu["child"][0]["child"]),
                ElementsAre("8 string 215", "9 Print*", "(0 )", "10 string 212"))
        << "the system's own fonts are none to work in";
}

TEST_F(MenusTest, CommandsNeedADocumentAPluginThatIsOnAndForSetsAWorkgroup) {
    const auto commands = [](const json& menu) { return Items(menu["child"]); };
    const auto allOff = testing::IsSupersetOf({"(3 string 204)", "(4 string 205)", "(5 string 206)"});
    EXPECT_THAT(commands(Menu("")), allOff);
    FontManagerInterface::GetSharedInstance().SetDefaultWorkgroupID(kWorkgroupID_All);
    EXPECT_THAT(commands(Menu("/d.ai")),
                testing::IsSupersetOf({"3 string 204", "(4 string 205)", "5 string 206", "6 string 200"}));
    framework.numbers["EnablePlugin"] = 0;
    EXPECT_THAT(commands(Menu("/d.ai")), allOff);
    EXPECT_THAT(commands(Menu("/d.ai")), testing::Contains("2 string 216")) << "standalone: a library";
}

TEST_F(MenusTest, ALengthEqualToTheSizeFits) {
    const size_t length = Menu("/d.ai").dump().size();
    for (const size_t size : {length, length + 1}) {
        std::string buffer(length + 2, '#');
        size_t given = size;
        EXPECT_EQ(Menus::GetMenus("/d.ai", buffer.data(), &given), 0u);
        EXPECT_EQ(given, length);
        EXPECT_EQ(buffer.substr(length), std::string("\0#", 2));
    }
    for (const size_t size : {length - 1, size_t{0}}) {
        std::string buffer(length + 2, '#');
        size_t given = size;
        EXPECT_EQ(Menus::GetMenus("/d.ai", buffer.data(), &given), CoreErrorCodes::kIndexOutOfRange);
        EXPECT_EQ(given, length);
        EXPECT_EQ(buffer, std::string(length + 2, '#'));
    }
}

TEST_F(MenusTest, ChoicesAreCarriedOut) {
    Select("About...");
    Select("string 201");  // in the user's language
    Select("Preferences...");
    EXPECT_THAT(framework.shownDialogs, ElementsAre("About", "About", "Preferences"));
    Select("Print");
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 9);
    Select("No Such Workgroup");
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 9);
    for (const auto& [command, handler] :
         {std::pair{"Collect Fonts for Output...", "HandleExportDocumentFonts"},
          {"Create Document Set...", "HandleCreateDocumentSet"},
          {"Check Document's Fonts", "HandleCheckDocumentFonts"}}) {
        Select(command);
        EXPECT_THAT(trace.Text(),
                    HasSubstr(std::string("Entering PluginCoreInterface::") + handler + "(/d.ai, ...)\n"));
    }
}

TEST_F(MenusTest, LoggedOutOnlyTheAboutBoxShows) {
    LogOut();
    Select("About...");
    EXPECT_THAT(framework.shownDialogs, ElementsAre("About"));
    EXPECT_TRUE(framework.shownBoxes.empty());
    for (const char* label : {"Preferences...", "Collect Fonts for Output...", "Print"})
        Select(label);
    EXPECT_EQ(framework.shownDialogs.size(), 1u);
    EXPECT_EQ(framework.shownBoxes, std::vector(3, std::pair(609u, 611u)));
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
}

TEST_F(MenusTest, WhatIsChosenFromBehindADialogIsRefused) {
    framework.whileDialogShows = [this] { Select("About..."); };
    Select("Preferences...");
    EXPECT_THAT(framework.shownDialogs, ElementsAre("Preferences"));
    framework.whileDialogShows = [] {
        EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), CoreErrorCodes::kUnknownError);
    };
    EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), 0u);
    framework.whileDialogShows = nullptr;
    Select("About...");
    EXPECT_EQ(framework.shownDialogs.back(), "About");
}

TEST_F(MenusTest, LoggingThatIsSwitchedOnInThePreferencesBeginsAtOnce) {
    framework.whileDialogShows = [this] { framework.numbers["EnableLogging"] = 1; };
    Select("Preferences...");
    EXPECT_THAT(library.log, HasSubstr("Exiting PluginCoreInterface::HandleMenuSelection"));
}

TEST_F(MenusTest, OfTwoWorkgroupsOfOneNameTheCommandBoxTakesTheOneChosen) {
    library.workgroups = {{7, kWorkgroupType_FontLibrary, "Print"}, {9, kWorkgroupType_FontLibrary, "Print"}};
    framework.chosenCommand = 9;
    EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), 0u);
    EXPECT_EQ(framework.numbers["CurrentWorkgroup"], 9);
}

TEST_F(MenusTest, WithoutAMenuOfTheHostsTheLastOneDescribedServes) {
    Menu("/d.ai");
    EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", "", "7", ""), 0u);
    EXPECT_THAT(framework.shownDialogs, ElementsAre("About"));
    EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", "", "8", ""), 0u);
    EXPECT_EQ(FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID(), 7);
}

TEST_F(MenusTest, WhatIsNotThereIsNotCarriedOut) {
    for (const char* menu : {"[]", "{", "{}", R"({"m":[{"id":"y","label":"About..."}]})",
                             R"({"m":[{"id":"x","label":7}]})", R"({"m":{"id":"x","label":"About..."}})"})
        EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", menu, "x", ""), 0u) << menu;
    EXPECT_EQ(Menus::HandleMenuSelection("/d.ai", R"({"m":[{"id":"NULL","label":"About..."}]})", nullptr, ""),
              0u);
    EXPECT_TRUE(framework.shownDialogs.empty());
    EXPECT_THAT(trace.Text(), testing::Not(HasSubstr("Setting current workgroup")));
}

// ---- The host's menu

namespace {

uint32_t Collect(const char* id, const char* label, void* context) {
    static_cast<std::vector<std::string>*>(context)->push_back(std::string(id) + "=" + label);
    return label == std::string("stop") ? 77 : 0;
}

}  // namespace

TEST(HostMenuJSON, ItemsAreFoundInArraysAtAnyDepth) {
    const CapturedTrace trace;
    std::vector<std::string> items;
    EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(
                  R"({"id":"root","label":"no","menu":[{"id":"a","label":"A","child":[{"id":1,"label":"ü"},
                      {"id":"b","label":null},{"label":"no"}]},{"id":"c","label":""}, 5]})",
                  Collect, &items),
              0u);
    EXPECT_THAT(items, ElementsAre("a=A", "1=ü", "c="));
    EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(
                  R"({"m":[{"id":1,"label":"stop"},{"id":2,"label":"more"}]})", Collect, &items),
              77u)
        << "the host's code ends it";
    EXPECT_EQ(items.size(), 4u);
}

TEST(HostMenuJSON, HugeAndDeepTextIsTakenOrRefused) {
    const CapturedTrace trace;
    std::vector<std::string> items;
    std::string huge = R"({"m":[)";
    while (huge.size() < 10'000'000)
        huge += R"({"id":"i","label":"Some text for a menu that nobody wants to read"},)";
    EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(huge + "0]}", Collect, &items), 0u);
    EXPECT_GT(items.size(), 100'000u);
    EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(huge, Collect, &items),
              CoreErrorCodes::kInvalidParam);
    std::string deep = R"({"id":"deep","label":"found"})";
    std::string opening;
    for (int depth = 0; depth < 100'000; ++depth) {
        opening += R"({"c":[)";
        deep += "]}";
    }
    deep.insert(0, opening);
    items.clear();
    EXPECT_EQ(PluginCoreInterface::CreateMenusFromJSONBuffer(deep, Collect, &items), 0u);
    EXPECT_THAT(items, ElementsAre("deep=found"));
    PluginCoreInterface::MenuObject item;
    EXPECT_EQ(PluginCoreInterface::GetMenuObjectFromRawJSON(deep, "deep", item), 0u);
    EXPECT_EQ(item.label, "found");
    EXPECT_EQ(PluginCoreInterface::GetMenuObjectFromRawJSON(
                  R"({"m":[{"id":"x","label":"first"},{"id":"x","label":"second"}]})", "x", item),
              0u);
    EXPECT_EQ(item.label, "first");
}

// ---- The command box

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
    framework.chosenCommand = 8;
    EXPECT_EQ(CommandDialog::InvokeCommandDialog(""), 0u);
    EXPECT_EQ(FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID(), 7);
    EXPECT_EQ(cf::GetBool(framework.commandBoxState.get(), "ButtonsEnabled"), false) << "no document";
    for (const int32_t nonsense : {0, 1, -5, 11, INT32_MAX, INT32_MIN}) {
        framework.chosenCommand = nonsense;
        EXPECT_EQ(CommandDialog::InvokeCommandDialog("/d.ai"), 0u) << nonsense;
    }
    EXPECT_EQ(FontManagerInterface::GetSharedInstance().GetDefaultWorkgroupID(), 7);
}
