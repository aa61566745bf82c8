// The exports themselves: what they make of pointers and texts that no host should pass.

#include <gmock/gmock.h>

#include <functional>

#include "FakeWorld.h"
#include "PluginCoreInterface.h"

using testing::HasSubstr;

namespace {

// None of these is valid UTF-8: a stray byte, a cut sequence, an overlong one, a surrogate, beyond the last.
constexpr const char* kNotUtf8[] = {"\xff", "abc\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"};

uint32_t RefuseItem(const char*, const char*, void*) {
    return 0;
}

class ExportsTest : public FakeWorld {
protected:
    char text[256] = "untouched";
    size_t size = sizeof text;
    char other[256] = "untouched";
    size_t otherSize = sizeof other;
    int fontCount = -1;
    uint32_t number = 4711;
};

/// A call with one pointer missing, and the code that is documented for it.
struct NullCase {
    const char* name;
    uint32_t expected;
    std::function<uint32_t()> call;
};

}  // namespace

TEST_F(ExportsTest, EveryNullPointerIsAnsweredWithItsCode) {
    const auto open = [this](const char* path, char* a, size_t* sizeA, char* b, size_t* sizeB, int* count) {
        return HandleOpenExistingDocument(path, "[]", a, sizeA, b, sizeB, count);
    };
    const NullCase cases[] = {
        {"identifier", PLUGINCORE_INVALID_PARAM, [] { return InitializePluginCoreInterface(nullptr, ""); }},
        {"prefix", PLUGINCORE_INVALID_PARAM, [] { return InitializePluginCoreInterface("x", nullptr); }},
        {"version", PLUGINCORE_INVALID_PARAM, [] { return GetAPIVersion(nullptr, 8); }},
        {"isEnabled", PLUGINCORE_INVALID_PARAM, [] { return PluginIsEnabled(true, nullptr); }},
        {"port", PLUGINCORE_INVALID_PARAM, [] { return GetSocketPort(nullptr); }},
        {"plugPlug", PLUGINCORE_NULL_POINTER, [] { return RegisterPlugPlug(nullptr); }},
        {"plugPlug, tried", PLUGINCORE_NULL_POINTER, [] { return TryRegisterPlugPlug(nullptr); }},
        {"new, buffer", PLUGINCORE_INVALID_PARAM, [&] { return HandleCreateNewDocument(nullptr, &size); }},
        {"new, size", PLUGINCORE_INVALID_PARAM, [&] { return HandleCreateNewDocument(text, nullptr); }},
        {"open, path", PLUGINCORE_INVALID_PARAM,
         [&] { return open(nullptr, text, &size, other, &otherSize, &fontCount); }},
        {"open, A", PLUGINCORE_INVALID_PARAM,
         [&] { return open("/d", nullptr, &size, other, &otherSize, &fontCount); }},
        {"open, size A", PLUGINCORE_INVALID_PARAM,
         [&] { return open("/d", text, nullptr, other, &otherSize, &fontCount); }},
        {"open, B", PLUGINCORE_INVALID_PARAM,
         [&] { return open("/d", text, &size, nullptr, &otherSize, &fontCount); }},
        {"open, size B", PLUGINCORE_INVALID_PARAM,
         [&] { return open("/d", text, &size, other, nullptr, &fontCount); }},
        {"open, count", PLUGINCORE_INVALID_PARAM,
         [&] { return open("/d", text, &size, other, &otherSize, nullptr); }},
        {"save, path", PLUGINCORE_INVALID_PARAM, [] { return HandleSaveDocument(nullptr, ""); }},
        {"close, path", PLUGINCORE_INVALID_PARAM, [] { return HandleCloseDocument(nullptr, ""); }},
        {"close, hint", PLUGINCORE_UNKNOWN_ERROR, [] { return HandleCloseDocument("/not open", nullptr); }},
        {"set path, path", PLUGINCORE_INVALID_PARAM, [] { return SetPathForDocument(nullptr, "id"); }},
        {"set path, id", PLUGINCORE_INVALID_PARAM, [] { return SetPathForDocument("/d", nullptr); }},
        {"get id, path", PLUGINCORE_INVALID_PARAM, [&] { return GetIDForDocument(nullptr, text, &size); }},
        {"get id, buffer", PLUGINCORE_INVALID_PARAM, [&] { return GetIDForDocument("/d", nullptr, &size); }},
        {"get id, size", PLUGINCORE_INVALID_PARAM, [&] { return GetIDForDocument("/d", text, nullptr); }},
        {"usage, document", PLUGINCORE_INVALID_PARAM, [] { return UpdateDocumentFontUsage(nullptr, "u"); }},
        {"usage, text", PLUGINCORE_INVALID_PARAM, [] { return UpdateDocumentFontUsage("/d", nullptr); }},
        {"chosen, path", PLUGINCORE_INVALID_PARAM,
         [&] { return ActivateChosenFonts(nullptr, "[]", &number); }},
        {"chosen, count", PLUGINCORE_INVALID_PARAM, [] { return ActivateChosenFonts("/d", "[]", nullptr); }},
        {"chosen, fonts", 0, [&] { return ActivateChosenFonts("/d", nullptr, &number); }},
        {"resolve, fonts", PLUGINCORE_INVALID_PARAM,
         [&] { return InvokeResolveDialog(false, nullptr, text, &size, other, &otherSize); }},
        {"resolve, result", PLUGINCORE_INVALID_PARAM,
         [&] { return InvokeResolveDialog(false, "[{}]", nullptr, &size, other, &otherSize); }},
        {"resolve, result size", PLUGINCORE_INVALID_PARAM,
         [&] { return InvokeResolveDialog(false, "[{}]", text, nullptr, other, &otherSize); }},
        {"resolve, skipped", PLUGINCORE_INVALID_PARAM,
         [&] { return InvokeResolveDialog(false, "[{}]", text, &size, nullptr, &otherSize); }},
        {"resolve, skipped size", PLUGINCORE_INVALID_PARAM,
         [&] { return InvokeResolveDialog(false, "[{}]", text, &size, other, nullptr); }},
        {"restricted, fonts", PLUGINCORE_INVALID_PARAM,
         [] { return InvokeRestrictedFontsDialog(true, nullptr); }},
        {"menus, document", PLUGINCORE_INDEX_OUT_OF_RANGE, [&] { return GetMenus(nullptr, text, &size); }},
        {"menus, buffer", PLUGINCORE_INVALID_PARAM, [&] { return GetMenus("", nullptr, &size); }},
        {"menus, size", PLUGINCORE_INVALID_PARAM, [&] { return GetMenus("", text, nullptr); }},
        {"create menus, json", PLUGINCORE_INVALID_PARAM,
         [] { return CreateMenusFromJSONBuffer(nullptr, RefuseItem, nullptr); }},
        {"create menus, callback", PLUGINCORE_INVALID_PARAM,
         [] { return CreateMenusFromJSONBuffer("{}", nullptr, nullptr); }},
        {"selection, all", 0, [] { return HandleMenuSelection(nullptr, nullptr, nullptr, nullptr); }},
        {"command dialog", 0, [] { return InvokeCommandDialog(nullptr); }},
        {"settings, buffer", PLUGINCORE_INVALID_PARAM, [&] { return GetSettings(nullptr, &size); }},
        {"settings, size", PLUGINCORE_INVALID_PARAM, [&] { return GetSettings(text, nullptr); }},
        {"preference, key", PLUGINCORE_INVALID_PARAM, [] { return SetPreference(nullptr, "1"); }},
        {"preference, value", PLUGINCORE_INVALID_PARAM, [] { return SetPreference("RMF4", nullptr); }},
    };
    MakeFunctional();
    for (const NullCase& each : cases)
        EXPECT_EQ(each.call(), each.expected) << each.name;
    ShouldShowLogin(nullptr);
    SetRebuildWorkgroupsMenuCallback(nullptr);
    EXPECT_STREQ(other, "untouched");
    EXPECT_TRUE(framework.shownBoxes.empty());
}

TEST_F(ExportsTest, BeforeItIsStartedNothingIsOffered) {
    FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
    bool flag = false;
    ShouldShowLogin(&flag);
    EXPECT_TRUE(flag);
    flag = true;
    EXPECT_EQ(PluginIsEnabled(true, &flag), PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_FALSE(flag);
    EXPECT_EQ(GetSettings(text, &size), PLUGINCORE_NOT_INITIALIZED);
    EXPECT_EQ(SetPreference("RMF4", "1"), PLUGINCORE_NOT_INITIALIZED);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(HandleSaveDocument("/d.ai", ""), PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_EQ(HandleCloseDocument("/d.ai", ""), PLUGINCORE_SUCCESS);
    EXPECT_EQ(HandleOpenExistingDocument("/d.ai", "[]", text, &size, other, &otherSize, &fontCount),
              PLUGINCORE_SUCCESS);
    EXPECT_EQ(fontCount, 0);
    EXPECT_EQ(InvokeCommandDialog(""), PLUGINCORE_INVALID_PARAM) << "no framework to show it";
    const char* resolvable = R"([{"PossibleReplacements":{"a":{}}}])";
    EXPECT_EQ(InvokeResolveDialog(true, resolvable, text, &size, other, &otherSize),
              PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_EQ(InvokeRestrictedFontsDialog(false, resolvable), PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_EQ(HandleMenuSelection("/d.ai", R"({"m":[{"id":"x","label":"About..."}]})", "x", ""), 0u);
    EXPECT_EQ(IdleEvent(), 0u);
    EXPECT_EQ(ProcessPanelMessages(true), 0u);
    EXPECT_EQ(TerminatePluginCoreInterface(), 0u);
}

TEST_F(ExportsTest, TextThatIsNotUtf8IsAnsweredWithACode) {
    MakeFunctional();
    library.fonts = {{1, "Sample"}};
    for (const char* bad : kNotUtf8) {
        EXPECT_EQ(InitializePluginCoreInterface(bad, ""), PLUGINCORE_INVALID_PARAM);
        const std::string badJSON = std::string(R"([{"PostScriptName":")") + bad + "\"}]";
        size = otherSize = sizeof text;
        EXPECT_EQ(
            HandleOpenExistingDocument(bad, badJSON.c_str(), text, &size, other, &otherSize, &fontCount), 1u)
            << "the list counts as empty; what the font manager matched is reported";
        EXPECT_EQ(UpdateDocumentFontUsage(bad, bad), PLUGINCORE_SUCCESS);
        EXPECT_EQ(HandleSaveDocument(bad, bad), PLUGINCORE_SUCCESS);
        EXPECT_EQ(ActivateChosenFonts(bad, badJSON.c_str(), &number), PLUGINCORE_INVALID_PARAM);
        size = sizeof text;
        EXPECT_EQ(GetIDForDocument(bad, text, &size), PLUGINCORE_SUCCESS) << "a path is bytes";
        EXPECT_EQ(HandleCloseDocument(bad, bad), PLUGINCORE_SUCCESS);
        EXPECT_EQ(SetPathForDocument(bad, bad), PLUGINCORE_NOT_FOUND);
        EXPECT_EQ(SetPreference(bad, "1"), PLUGINCORE_INVALID_PARAM);
        EXPECT_EQ(SetPreference("RMF4", bad), PLUGINCORE_INVALID_PARAM);
        EXPECT_EQ(SetPreference("LastUsername", bad), PLUGINCORE_INVALID_PARAM);
        EXPECT_EQ(framework.texts["LastUsername"], "") << "and is not stored";
        const std::string badMenu = std::string(R"({"m":[{"id":"x","label":")") + bad + "\"}]}";
        EXPECT_EQ(CreateMenusFromJSONBuffer(badMenu.c_str(), RefuseItem, nullptr), PLUGINCORE_INVALID_PARAM);
        EXPECT_EQ(HandleMenuSelection(bad, badMenu.c_str(), "x", bad), 0u);
        EXPECT_EQ(
            HandleMenuSelection(bad, R"({"m":[{"id":"x","label":"Check Document's Fonts"}]})", "x", bad), 0u);
        EXPECT_EQ(InvokeCommandDialog(bad), 0u);
        EXPECT_EQ(InvokeResolveDialog(true, badJSON.c_str(), text, &size, other, &otherSize),
                  PLUGINCORE_INVALID_PARAM);
        EXPECT_EQ(InvokeRestrictedFontsDialog(true, badJSON.c_str()), PLUGINCORE_INVALID_PARAM);
    }
    EXPECT_EQ(library.CallsOf("SaveDocumentFonts"), 5);
}

TEST_F(ExportsTest, TheVersionIsAgreedOn) {
    MakeFunctional();
    for (const uint32_t good : {0u, 8u}) {
        number = 0;
        EXPECT_EQ(GetAPIVersion(&number, good), 0u);
        EXPECT_EQ(number, 8u);
    }
    EXPECT_TRUE(framework.shownBoxes.empty());
    number = 0;
    EXPECT_EQ(GetAPIVersion(&number, 7), PLUGINCORE_NOT_IMPLEMENTED);
    EXPECT_EQ(number, 8u);
    EXPECT_THAT(framework.shownBoxes, testing::ElementsAre(std::pair(602u, 603u)));
}

TEST_F(ExportsTest, WhatIsCalledBeforeTheStartDoesNotSpoilIt) {
    EXPECT_EQ(GetAPIVersion(&number, 7), PLUGINCORE_NOT_IMPLEMENTED);
    EXPECT_EQ(GetMenus("", text, &size), PLUGINCORE_INDEX_OUT_OF_RANGE);
    EXPECT_TRUE(framework.shownBoxes.empty()) << "nobody knows yet whose framework it would be";
    EXPECT_EQ(InitializePluginCoreInterface("com.vantorix.AutoActivationPlugin.AI29", ""), 0u);
    bool isEnabled = false;
    EXPECT_EQ(PluginIsEnabled(false, &isEnabled), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_EQ(SetPreference("RMF4", "1"), 0u);
}

TEST_F(ExportsTest, TheLoginMessageCountsTheUserAsLoggedOut) {
    MakeFunctional();
    EXPECT_EQ(ShowNotLoggedInMessageBox(), 0u);
    EXPECT_THAT(framework.shownBoxes, testing::ElementsAre(std::pair(609u, 611u)));
    EXPECT_EQ(SetPreference("RMF4", "1"), PLUGINCORE_NOT_INITIALIZED);
    bool isEnabled = false;
    EXPECT_EQ(PluginIsEnabled(false, &isEnabled), 0u);
    EXPECT_EQ(SetPreference("RMF4", "1"), 0u);
}

TEST_F(ExportsTest, FailuresOfPanelsAreReportedUnderTheInterfacesName) {
    int service = 0;
    EXPECT_EQ(RegisterPlugPlug(&service), PLUGINCORE_NOT_IMPLEMENTED);
    EXPECT_THAT(trace.Text(), HasSubstr("PluginCoreInterface.cpp'  Line=1995  "
                                        "Expression='PanelManager::GetSharedInstance().RegisterPlugPlug("
                                        "plugPlug)'  Code='134217728'  "));
    EXPECT_EQ(TryRegisterPlugPlug(&service), PLUGINCORE_NOT_INITIALIZED);

    FakePanel* panel = AddPanel();
    panel->selectCode = panel->popCode = CoreErrorCodes::kNotFound;
    EXPECT_EQ(ProcessPanelMessages(false), PLUGINCORE_NOT_FOUND);
    EXPECT_THAT(trace.Text(),
                HasSubstr("Line=2037  Expression='PanelManager::GetSharedInstance().SelectSocket("
                          "closeListeningSocket)'"));
    panel->selectCode = 0;
    EXPECT_EQ(ProcessPanelMessages(false), PLUGINCORE_NOT_FOUND);
    EXPECT_THAT(trace.Text(), HasSubstr("Line=2038  Expression='PanelManager::GetSharedInstance()."
                                        "PopNotifications()'"));
    panel->popCode = 0;
    EXPECT_EQ(ProcessPanelMessages(true), 0u);
    EXPECT_EQ(panel->selections, (std::vector<bool>{false, false, true}));
}

TEST_F(ExportsTest, TerminatingClosesEveryDocumentBeforeTheFontManagerGoes) {
    MakeFunctional();
    library.fonts = {{1, "Sample"}};
    for (const char* path : {"/one.ai", "/two.ai"}) {
        size = otherSize = sizeof text;
        EXPECT_EQ(HandleOpenExistingDocument(path, "[]", text, &size, other, &otherSize, &fontCount), 1u);
    }
    trace.Clear();
    EXPECT_EQ(TerminatePluginCoreInterface(), 0u);
    EXPECT_TRUE(AllTrackedDocuments::GetSharedInstance().Documents().empty());
    EXPECT_THAT(trace.Text(),
                testing::StartsWith("Entering PluginCoreInterface::HandleCloseDocument('/one.ai', ...)\n"));
    EXPECT_EQ(library.calls.back(), "CleanUpOnShutdown");
    bool isEnabled = true;
    EXPECT_EQ(PluginIsEnabled(true, &isEnabled), PLUGINCORE_UNKNOWN_ERROR);
}
