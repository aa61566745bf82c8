
#include <nlohmann/json.hpp>

#include "GeneralInterface.h"
#include "PanelTest.h"

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::StartsWith;

namespace {

using Texts = std::vector<std::string>;

struct Request {
    const char* message;
    Texts outcome;  ///< calls into the interface library, and then replies, to the byte
};

const Request kCatalogue[] = {
    {R"({"messageID":8,"fontID":4294967295,"postscriptName":"S-Bold","displayName":"S Bold"})",
     {"GetFontInfoByID(4294967295)", "GetFontConflicts([4294967295])",
      "EnableDesignActivation(4294967295, 1, 1)", R"({"messageID":8,"returnCode":0})"}},
    {R"({"messageID":9})", {"SetGoogleWebFontsEnabled(1)", R"({"messageID":9,"returnCode":0})"}},
    {R"({"messageID":10})",
     {R"({"messageID":10,"isEnabled":true,"isReplicating":true,"replicationMode":2,"returnCode":0})"}},
    {R"({"messageID":11})", {R"({"messageID":11,"height":400,"width":300})"}},
    {R"({"messageID":12,"windowWidth":640,"windowHeight":480})", {}},
    {R"({"messageID":11})", {R"({"messageID":11,"height":480,"width":640})"}},  // as set above
    {R"({"messageID":13,"filename":"file:///nobody's"})", {}},
    {R"({"messageID":17,"selection":4,"savesSmartList":true})", {}},
    {R"({"messageID":18})", {R"({"messageID":18,"selection":4,"savesSmartList":true})"}},  // as chosen above
    {R"({"messageID":32,"highPriorityFontIDs":[7],"fontIDs":[5,4294967295,7],"smartListID":3})",
     {"RenderFontNamePreviewPNGs([], [7,5,4294967295])"}},
    {R"({"messageID":33,"smartListID":3,"smartListName":"Neü \"x\""})", {"RenameSmartList(3, 'Neü \"x\"')"}},
    {R"({"messageID":34,"smartListID":-3})", {"DeleteSmartList(-3)"}},
    {R"({"messageID":35,"smartListID":3,"workgroupIDs":[1],"setIDs":[2,-3],"smartSetIDs":[]})",
     {"QueryForSmartListFonts(3, [1], [2,-3], [])"}},
    {R"({"messageID":36,"smartListID":3})",
     {"GetSmartList(3)",
      R"({"messageID":36,"smartListID":3,"smartListName":"Drei","workgroupIDs":[7],"setIDs":[2,1],"smartSetIDs":[]})"}},
    {R"({"messageID":37,"smartListID":3})",
     {"GetSmartList(3)", R"({"messageID":37,"smartListID":3,"listDefinition":"eyJpZCI6M30="})"}},
    {R"({"messageID":38})",
     {R"({"messageID":38,"smartLists":[{"smartListID":3,"smartListName":"Drei"},{"smartListID":4,"smartListName":""}]})"}},
    {R"({"messageID":39,"smartListName":"Ünique","workgroupIDs":[1,2],"setIDs":[],"smartSetIDs":[3]})",
     {"CreateSmartList('Ünique', [1,2], [], [3])",
      R"({"messageID":39,"smartList":{"smartListID":77,"smartListName":"Ünique"}})"}},
    {R"({"messageID":42,"smartListID":3,"workgroupIDs":[1],"setIDs":[2],"smartSetIDs":[3]})",
     {"SetSmartListQuery(3, [1], [2], [3])"}},
    {R"({"messageID":44,"smartListName":"Neu","smartListID":3})", {"RenameSmartList(3, 'Neu')"}},
    {R"({"messageID":47,"fontID":5,"version":"1.000"})", {}},
    {R"({"messageID":48})", {}},
    {R"({"messageID":49})", {}},
    {R"({"messageID":51})", {}},
    {R"({"messageID":59})", {}},
    {R"({"messageID":58})", {R"({"messageID":58,"canAccessGoogleFonts":true})"}},
    {R"({"messageID":66})",
     {R"({"messageID":20,"isStandalone":true})", R"({"messageID":30,"isEnabled":true})"}},
    {R"({"messageID":67,"isCtrlPressed":true,"isShiftPressed":false,"isAltPressed":true,"keyCode":65})", {}},
};

class PanelRequestsTest : public PanelTest {
protected:
    PanelRequestsTest() {
        framework.numbers["CS5PanelWidth"] = 300;
        framework.numbers["CS5PanelHeight"] = 400;
        library.areWebFontsEnabled = library.canAccessWebFonts = library.isReplicationRunning = true;
        library.replicationMode = 2;
        library.smartLists = {{3, "Drei", {7}, {2, 1}, {}, R"({"id":3})"}, {4, "", {}, {}, {}, ""}};
    }
};

}  // namespace

TEST_F(PanelRequestsTest, ImagesOfManyFontsAreMadeUntilTheHostIsDueAgain) {
    FakeClock clock;
    clock.ticksPerLook = 20;
    std::string many = "1";
    for (int fontID = 2; fontID <= 20; ++fontID)
        many += "," + std::to_string(fontID);
    Send(R"({"messageID":32,"highPriorityFontIDs":[],"smartListID":0,"fontIDs":[)" + many + "]}");
    EXPECT_EQ(library.CallsOf("RenderFontNamePreviewPNGs"), 2);
    // What is wanted first overtakes those that wait; nothing is made twice.
    Send(R"({"messageID":32,"highPriorityFontIDs":[20],"smartListID":0,"fontIDs":[19,21]})");
    EXPECT_EQ(Calls().rbegin()[1], "RenderFontNamePreviewPNGs([], [20,7,8])");
    for (int idle = 0; idle < 5; ++idle)
        EXPECT_EQ(panel.PopNotifications(), 0u);
    EXPECT_EQ(library.CallsOf("RenderFontNamePreviewPNGs"), 7);
    EXPECT_EQ(Calls().back(), "RenderFontNamePreviewPNGs([], [18,19,21])");
}

TEST_F(PanelRequestsTest, EveryRequestMakesItsCallsAndGetsItsReply) {
    for (const Request& request : kCatalogue) {
        Forget();
        const Texts replies = Send(request.message);
        Texts outcome = Calls();
        outcome.insert(outcome.end(), replies.begin(), replies.end());
        EXPECT_EQ(outcome, request.outcome) << request.message;
        EXPECT_THAT(trace.Text(), testing::Not(HasSubstr("Unknown"))) << request.message;
    }
}

TEST_F(PanelRequestsTest, ARequestWithAMissingOrMistypedKeyIsReportedAndDropped) {
    for (const Request& request : kCatalogue) {
        const auto whole = nlohmann::ordered_json::parse(request.message);
        for (const auto& [key, value] : whole.items()) {
            Texts wrongValues = {"null", "{}", "1.5"};
            if (value.is_number() && key != "messageID")
                wrongValues.push_back("1099511627776");
            wrongValues.push_back("");  // missing
            for (const std::string& wrong : wrongValues) {
                auto changed = whole;
                changed.erase(key);
                if (!wrong.empty())
                    changed[key] = nlohmann::ordered_json::parse(wrong);
                Forget();
                EXPECT_THAT(Send(changed.dump()), IsEmpty()) << changed;
                EXPECT_THAT(Calls(), IsEmpty()) << changed;
                EXPECT_THAT(trace.Text(), HasSubstr(wrong.empty() ? "Error='CoreErrorCodes::kNotFound'"
                                                                  : "Error='CoreErrorCodes::kError'"));
                EXPECT_THAT(trace.Text(), HasSubstr("Expression='GJSONUtils::GetValueForKey("));
            }
        }
    }
}

TEST_F(PanelRequestsTest, UnknownNumbersAreLoggedAndNothingElse) {
    for (const char* id : {"7", "68", "-1", "43", "4294967312"}) {
        EXPECT_EQ(panel.CallMethodForMessage(std::string(R"({"messageID":)") + id + "}"), 0u);
        EXPECT_THAT(trace.Text(), HasSubstr(" Unknown operator ID from panel '" + std::string(id) + "'.\n"));
    }
    EXPECT_THAT(service.events, IsEmpty());
}

TEST_F(PanelRequestsTest, KeysGoToTheHost) {
    MarquellGlobals::SetSharedHostAppInterface(std::make_unique<GeneralInterface>());
    Send(R"({"messageID":67,"isCtrlPressed":true,"isShiftPressed":false,"isAltPressed":true,"keyCode":65})");
    Send(R"({"messageID":67,"isCtrlPressed":false,"isShiftPressed":true,"isAltPressed":false,"keyCode":9})");
    EXPECT_THAT(trace.Text(), HasSubstr("Key 65 pressed in a panel (ctrl=1, shift=0, alt=1)\n"));
    EXPECT_THAT(trace.Text(), HasSubstr("Key 9 pressed in a panel (ctrl=0, shift=1, alt=0)\n"));
}

TEST_F(PanelRequestsTest, TheHostBuildsItsMenuAnewWhenWorkgroupsChange) {
    static int menusRebuilt;
    menusRebuilt = 0;
    GeneralInterface host;
    host.OnWorkgroupsChanged();  // nobody to tell yet
    host.SetRebuildWorkgroupsMenuCallback([] { ++menusRebuilt; });
    host.Refresh(false, true);
    EXPECT_EQ(menusRebuilt, 0);
    host.OnWorkgroupsChanged();
    EXPECT_EQ(menusRebuilt, 1);
}

TEST_F(PanelRequestsTest, AConflictIsToldBeforeTheResult) {
    library.conflictingFonts = {9, 10};
    constexpr char kMessage[] = R"({"messageID":8,"fontID":5,"postscriptName":"P","displayName":"D"})";
    EXPECT_THAT(Send(kMessage),
                ElementsAre(R"({"messageID":46,"fontID":5,"isConflictError":true,"conflictID":9})",
                            R"({"messageID":8,"returnCode":0})"));
    library.conflictingFonts.clear();
    library.codes["EnableDesignActivation"] = {CoreErrorCodes::kNotFound};
    EXPECT_THAT(Send(kMessage), ElementsAre(R"({"messageID":46,"fontID":5,"isConflictError":false})",
                                            R"({"messageID":8,"returnCode":117440512})"));
    library.codes["GetFontConflicts"] = {CoreErrorCodes::kNotFound};
    EXPECT_THAT(Send(kMessage), ElementsAre(R"({"messageID":8,"returnCode":0})")) << "activated all the same";
    EXPECT_THAT(trace.Text(), HasSubstr("Expression='fontManager->GetFontConflicts("));
    library.codes["GetFontInfoByID"] = {CoreErrorCodes::kNotFound};
    Forget();
    EXPECT_THAT(Send(kMessage), testing::Contains(R"({"messageID":8,"returnCode":117440512})"));
    EXPECT_THAT(Calls(), IsEmpty()) << "a font that is not there";
}

TEST_F(PanelRequestsTest, ItIsRememberedThatWebFontsWereEnabledOnce) {
    int64_t& haveEverBeenEnabled = framework.numbers["GWFHaveEverBeenEnabled"];
    library.areWebFontsEnabled = false;
    library.codes["SetGoogleWebFontsEnabled"] = {CoreErrorCodes::kNotFound};
    Send(R"({"messageID":9})");
    Send(R"({"messageID":10})");
    EXPECT_EQ(haveEverBeenEnabled, 0);
    Send(R"({"messageID":9})");
    EXPECT_EQ(std::exchange(haveEverBeenEnabled, 0), 1);
    library.areWebFontsEnabled = true;
    Send(R"({"messageID":10})");
    EXPECT_EQ(haveEverBeenEnabled, 1) << "enabled by other means";
}

TEST_F(PanelRequestsTest, OfAFontManagerThatFailsRepliesTellWhereTheyHaveAReturnCode) {
    const std::tuple<const char*, const char*, size_t> requests[] = {
        {"GetIsGoogleWebFontsEnabled", R"({"messageID":10})", 1},
        {"GetIsReplicationRunning", R"({"messageID":10})", 1},
        {"GetCurrentReplicationMode", R"({"messageID":10})", 1},
        {"SetGoogleWebFontsEnabled", R"({"messageID":9})", 1},
        {"CanAccessGoogleFonts", R"({"messageID":58})", 0},
        {"GetAllSmartLists", R"({"messageID":38})", 0},
        {"GetSmartList", R"({"messageID":36,"smartListID":3})", 0},
        {"GetSmartList", R"({"messageID":37,"smartListID":3})", 0},
        {"GetSmartListFonts", R"({"messageID":40,"smartListID":3})", 0},
        {"CreateSmartList",
         R"({"messageID":39,"smartListName":"","workgroupIDs":[],"setIDs":[],"smartSetIDs":[]})", 0},
    };
    for (const auto& [symbol, message, replies] : requests) {
        library.codes[symbol] = {CoreErrorCodes::kNotFound};
        const Texts sent = Send(message);
        EXPECT_EQ(sent.size(), replies) << message;
        EXPECT_THAT(sent, testing::Each(testing::EndsWith(R"("returnCode":117440512})")));
        EXPECT_THAT(trace.Text(), HasSubstr(std::string("pf") + symbol)) << message;
    }
}

TEST_F(PanelRequestsTest, ReportsThatBelongToNoRequestAreSentAtOnce) {
    EXPECT_EQ(panel.SetEnabled(true), 0u);
    EXPECT_EQ(panel.SendProgress(32, "Schrift \"ü\"", 2, 9), 0u);
    EXPECT_EQ(panel.FontActivationError(4294967295, 0), 0u);
    EXPECT_THAT(service.TakeMessages(),
                ElementsAre(R"({"messageID":30,"isEnabled":true})",
                            R"({"messageID":32,"text":"Schrift \"ü\"","stepIndex":2,"numSteps":9})",
                            R"({"messageID":46,"fontID":4294967295,"isConflictError":false})"));
    EXPECT_NE(panel.SendProgress(32, "\xff", 0, 0), 0u) << "no UTF-8";
    EXPECT_THAT(service.events, IsEmpty());
    MarquellGlobals::SetLoggedIn(false);
    EXPECT_THAT(Send(R"({"messageID":66})"), testing::Contains(R"({"messageID":30,"isEnabled":false})"));
    library.codes["GetRunningStandalone"] = {CoreErrorCodes::kNotFound};
    EXPECT_THAT(Send(R"({"messageID":66})"), ElementsAre(R"({"messageID":30,"isEnabled":false})"));
}
