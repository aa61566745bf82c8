// The exports themselves: what they make of pointers and texts that no host should pass.

#include "FakePlugPlug.h"
#include "FakeWorld.h"
#include "LeaveCall.h"
#include "NotificationQueue.h"
#include "PluginCoreInterface.h"

using testing::HasSubstr;

namespace {

uint32_t RefuseItem(const char*, const char*, void*) {
    return 0;
}

uint32_t CountItem(const char*, const char*, void* count) {
    ++*static_cast<int*>(count);
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

}  // namespace

TEST_F(ExportsTest, EveryNullPointerIsAnsweredWithItsCode) {
    MakeFunctional();
    std::vector<uint32_t> answers = {
        InitializePluginCoreInterface(nullptr, ""),
        InitializePluginCoreInterface("x", nullptr),
        GetAPIVersion(nullptr, 8),
        PluginIsEnabled(true, nullptr),
        GetSocketPort(nullptr),
        HandleCreateNewDocument(nullptr, &size),
        HandleCreateNewDocument(text, nullptr),
        HandleSaveDocument(nullptr, ""),
        HandleCloseDocument(nullptr, ""),
        SetPathForDocument(nullptr, "id"),
        SetPathForDocument("/d", nullptr),
        GetIDForDocument(nullptr, text, &size),
        GetIDForDocument("/d", nullptr, &size),
        GetIDForDocument("/d", text, nullptr),
        UpdateDocumentFontUsage(nullptr, "u"),
        UpdateDocumentFontUsage("/d", nullptr),
        ActivateChosenFonts(nullptr, "[]", &number),
        ActivateChosenFonts("/d", "[]", nullptr),
        InvokeRestrictedFontsDialog(true, nullptr),
        GetMenus("", nullptr, &size),
        GetMenus("", text, nullptr),
        CreateMenusFromJSONBuffer(nullptr, RefuseItem, nullptr),
        CreateMenusFromJSONBuffer("{}", nullptr, nullptr),
        GetSettings(nullptr, &size),
        GetSettings(text, nullptr),
        SetPreference(nullptr, "1"),
        SetPreference("RMF4", nullptr),
    };
    for (int null = 0; null < 6; ++null) {
        const auto unless = [&](int argument, auto* pointer) { return argument != null ? pointer : nullptr; };
        answers.push_back(HandleOpenExistingDocument(unless(0, "/d"), "[]", unless(1, text), unless(2, &size),
                                                     unless(3, other), unless(4, &otherSize),
                                                     unless(5, &fontCount)));
        if (null < 5)
            answers.push_back(InvokeResolveDialog(false, unless(0, "[{}]"), unless(1, text), unless(2, &size),
                                                  unless(3, other), unless(4, &otherSize)));
    }
    EXPECT_THAT(answers, testing::Each(PLUGINCORE_INVALID_PARAM));
    EXPECT_EQ(RegisterPlugPlug(nullptr), PLUGINCORE_NULL_POINTER);
    EXPECT_EQ(TryRegisterPlugPlug(nullptr), PLUGINCORE_NULL_POINTER);
    // Where null stands for nothing.
    EXPECT_EQ(HandleCloseDocument("/not open", nullptr), PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_EQ(ActivateChosenFonts("/d", nullptr, &number), PLUGINCORE_SUCCESS);
    EXPECT_EQ(GetMenus(nullptr, text, &size), PLUGINCORE_INDEX_OUT_OF_RANGE);
    EXPECT_EQ(HandleMenuSelection(nullptr, nullptr, nullptr, nullptr), PLUGINCORE_SUCCESS);
    EXPECT_EQ(InvokeCommandDialog(nullptr), PLUGINCORE_SUCCESS);
    ShouldShowLogin(nullptr);
    SetRebuildWorkgroupsMenuCallback(nullptr);
    EXPECT_STREQ(other, "untouched");
    EXPECT_TRUE(framework.shownBoxes.empty());
}

TEST_F(ExportsTest, BeforeItIsStartedNothingIsOffered) {
    FontManagerInterface::GetSharedInstance().OnHostAppShuttingDown();
    bool shouldLogIn = false;
    ShouldShowLogin(&shouldLogIn);
    bool isEnabled = true;
    EXPECT_EQ(PluginIsEnabled(true, &isEnabled), PLUGINCORE_UNKNOWN_ERROR);
    EXPECT_TRUE(shouldLogIn && !isEnabled);
    EXPECT_EQ(GetSettings(text, &size), PLUGINCORE_NOT_INITIALIZED);
    EXPECT_EQ(SetPreference("RMF4", "1"), PLUGINCORE_NOT_INITIALIZED);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(InvokeCommandDialog(""), PLUGINCORE_INVALID_PARAM) << "no framework to show it";
    const char* resolvable = R"([{"PossibleReplacements":{"a":{}}}])";
    const std::vector<uint32_t> refused = {
        HandleSaveDocument("/d.ai", ""), InvokeRestrictedFontsDialog(false, resolvable),
        InvokeResolveDialog(true, resolvable, text, &size, other, &otherSize)};
    EXPECT_THAT(refused, testing::Each(PLUGINCORE_UNKNOWN_ERROR));
    const std::vector<uint32_t> done = {
        HandleOpenExistingDocument("/d.ai", "[]", text, &size, other, &otherSize, &fontCount),
        HandleMenuSelection("/d.ai", R"({"m":[{"id":"x","label":"About..."}]})", "x", ""), IdleEvent(),
        ProcessPanelMessages(true), TerminatePluginCoreInterface()};
    EXPECT_THAT(done, testing::Each(PLUGINCORE_SUCCESS));
    EXPECT_EQ(fontCount, 0);
}

TEST_F(ExportsTest, TextThatIsNotUtf8IsAnsweredWithACode) {
    MakeFunctional();
    library.fonts = {{1, "Sample"}};
    for (const std::string bytes : {"\xff", "abc\xc3", "\xed\xa0\x80"}) {
        const char* bad = bytes.c_str();
        const std::string badList = R"([{"PostScriptName":")" + bytes + "\"}]";
        const std::string badMenu = R"({"m":[{"id":"x","label":")" + bytes + "\"}]}";
        const char* check = R"({"m":[{"id":"x","label":"Check Document's Fonts"}]})";
        size = otherSize = sizeof text;
        EXPECT_EQ(
            HandleOpenExistingDocument(bad, badList.c_str(), text, &size, other, &otherSize, &fontCount), 1u)
            << "the list counts as empty; what the font manager matched is reported";
        size = sizeof text;
        const std::vector<uint32_t> taken = {UpdateDocumentFontUsage(bad, bad),
                                             HandleSaveDocument(bad, bad),
                                             GetIDForDocument(bad, text, &size),
                                             HandleCloseDocument(bad, bad),
                                             HandleMenuSelection(bad, badMenu.c_str(), "x", bad),
                                             HandleMenuSelection(bad, check, "x", bad),
                                             InvokeCommandDialog(bad)};
        EXPECT_THAT(taken, testing::Each(PLUGINCORE_SUCCESS)) << "a path is bytes";
        EXPECT_EQ(SetPathForDocument(bad, bad), PLUGINCORE_NOT_FOUND);
        const std::vector<uint32_t> refused = {
            InitializePluginCoreInterface(bad, ""),
            ActivateChosenFonts(bad, badList.c_str(), &number),
            SetPreference(bad, "1"),
            SetPreference("RMF4", bad),
            SetPreference("LastUsername", bad),
            CreateMenusFromJSONBuffer(badMenu.c_str(), RefuseItem, nullptr),
            InvokeResolveDialog(true, badList.c_str(), text, &size, other, &otherSize),
            InvokeRestrictedFontsDialog(true, badList.c_str())};
        EXPECT_THAT(refused, testing::Each(PLUGINCORE_INVALID_PARAM));
        EXPECT_EQ(framework.texts["LastUsername"], "") << "and is not stored";
    }
    EXPECT_EQ(library.CallsOf("SaveDocumentFonts"), 3);
}

TEST_F(ExportsTest, TheVersionIsAgreedOnAtAnyTime) {
    const auto agrees = [&](uint32_t version) {
        number = 0;
        const uint32_t code = GetAPIVersion(&number, version);
        EXPECT_EQ(number, 8u);
        return code;
    };
    EXPECT_EQ(agrees(7), PLUGINCORE_NOT_IMPLEMENTED);
    EXPECT_EQ(GetMenus("", text, &size), PLUGINCORE_INDEX_OUT_OF_RANGE);
    EXPECT_TRUE(framework.shownBoxes.empty()) << "nobody knows yet whose framework it would be";
    EXPECT_EQ(InitializePluginCoreInterface("com.vantorix.AutoActivationPlugin.AI29", ""), 0u);
    bool isEnabled = false;
    EXPECT_EQ(PluginIsEnabled(false, &isEnabled), 0u);
    EXPECT_TRUE(isEnabled);
    EXPECT_EQ(SetPreference("RMF4", "1"), 0u);
    EXPECT_EQ(agrees(0) + agrees(8), 0u);
    EXPECT_TRUE(framework.shownBoxes.empty());
    EXPECT_EQ(agrees(7), PLUGINCORE_NOT_IMPLEMENTED);
    EXPECT_THAT(framework.shownBoxes, testing::ElementsAre(std::pair(602u, 603u)));
    CoreAgentNotificationCallback(kPluginCallback_LoggedOut, nullptr);
    EXPECT_TRUE(MarquellGlobals::IsLoggedIn());
    EXPECT_EQ(IdleEvent(), 0u);
    EXPECT_FALSE(MarquellGlobals::IsLoggedIn());
    EXPECT_EQ(TerminatePluginCoreInterface(), PLUGINCORE_SUCCESS);
    EXPECT_FALSE(MarquellGlobals::IsConnectedToCore());
}

TEST_F(ExportsTest, FailuresOfPanelsAreReportedUnderTheInterfacesName) {
    FakePlugPlug service;
    service.answerToListeners = 1;
    EXPECT_EQ(RegisterPlugPlug(&service), PLUGINCORE_NOT_INITIALIZED);
    EXPECT_THAT(trace.Text(), HasSubstr("PluginCoreInterface.cpp'  Line=1995  Expression='PanelManager::"
                                        "GetSharedInstance().RegisterPlugPlug(plugPlug)'"));
    EXPECT_EQ(TryRegisterPlugPlug(&service), PLUGINCORE_NOT_INITIALIZED);
    RecordingPanel* panel = AddPanel();
    panel->messagesUntilFailure = 0;
    EXPECT_EQ(ProcessPanelMessages(false), PLUGINCORE_NOT_FOUND);
    EXPECT_THAT(trace.Text(), HasSubstr("Line=2037  Expression='PanelManager::GetSharedInstance().Sel"));
    EXPECT_EQ(ProcessPanelMessages(true), 0u);
    EXPECT_THAT(panel->sent, testing::ElementsAre("close"));
}

class LeavingHostTest : public ExportsTest {
protected:
    /// In a process of its own, whose panels cannot be taken back.
    void Play() {
        FakeClock time;
        MakeFunctional();
        FakePlugPlug service;
        service.whileAdding = LeaveCall;
        EXPECT_TRUE(IsLeft([&] { RegisterPlugPlug(&service); }));
        service.whileAdding = nullptr;
        EXPECT_EQ(RegisterPlugPlug(&service), 0u);
        const std::string question = R"({"messageID":66})";
        service.whileDispatching = [](const std::string&) { LeaveCall(); };
        EXPECT_TRUE(IsLeft([&] { service.Deliver(question); }));
        PanelManager::GetSharedInstance().PushDataChangedNotification();
        EXPECT_TRUE(IsLeft([] { ProcessPanelMessages(false); }));
        service.whileDispatching = nullptr;
        service.events.clear();
        service.Deliver(question);
        EXPECT_THAT(service.TakeMessages(), testing::Contains(HasSubstr(R"("messageID":20)")));
        EXPECT_EQ(ProcessPanelMessages(false), 0u);
        EXPECT_THAT(service.TakeMessages(), testing::ElementsAre(R"({"messageID":56})")) << "it was not sent";
        MarquellGlobals::SetPluginServicesEnabled(false);
        SetRebuildWorkgroupsMenuCallback(LeaveCall);
        bool isEnabled = false;
        EXPECT_TRUE(IsLeft([&] { PluginIsEnabled(false, &isEnabled); }));
        SetRebuildWorkgroupsMenuCallback(nullptr);
        const char* menus = R"({"menu":[{"id":"1","label":"A"},{"id":"2","label":"B"}]})";
        const auto leave = [](const char*, const char*, void*) -> uint32_t { LeaveCall(); };
        EXPECT_TRUE(IsLeft([&] { CreateMenusFromJSONBuffer(menus, leave, nullptr); }));
        int items = 0;
        EXPECT_EQ(CreateMenusFromJSONBuffer(menus, CountItem, &items), 0u);
        EXPECT_EQ(items, 2);
        time.ticks += 60000;
        trace.Clear();
        EXPECT_EQ(HandleOpenExistingDocument("/d.ai", R"([{"PostScriptName":"A"}])", text, &size, other,
                                             &otherSize, &fontCount),
                  0u)
            << trace.Text();
        EXPECT_THAT(trace.Text(), testing::StartsWith("Entering ")) << "no deeper than before";
        std::exit(HasFailure() ? 1 : 0);
    }
};

TEST_F(LeavingHostTest, IsServedTheNextTime) {
#ifdef PLUGINCORE_SANITIZED
    GTEST_SKIP() << "what such a host leaves behind is a leak, and nobody else's";
#endif
    EXPECT_EXIT(Play(), testing::ExitedWithCode(0), "");
}
