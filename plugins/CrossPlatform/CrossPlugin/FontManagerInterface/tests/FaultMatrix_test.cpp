// Every operation against every way to lose the agent.

#include <gmock/gmock.h>

#include <cstdio>
#include <functional>

#include "CoreAgentInterfaceTest.h"

namespace {

using Boxes = std::vector<std::pair<uint32_t, uint32_t>>;

struct Operation {
    const char* symbol;  ///< the library's function behind it
    std::function<bool(CoreAgentInterface&)> succeeds;
};

CFRef<CFMutableArrayRef> OneFont() {
    const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
    cf::Set(font, kGS_DatabaseIDKey, 1);
    CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    cf::Append(fonts, font);
    return fonts;
}

const Operation kOperations[] = {
    {"ActivateDocumentFontsByPath",
     [](CoreAgentInterface& agent) { return agent.ActivateDocumentFontsByPath("/d.ai", {}, nullptr) == 0; }},
    {"ActivateFonts",
     [](CoreAgentInterface& agent) { return agent.ActivateFontsByID(OneFont().get(), "id", nullptr) == 0; }},
    {"ActivateFonts",
     [](CoreAgentInterface& agent) {
         const CFRef<CFMutableArrayRef> fonts = OneFont();
         return agent.ActivateFontByID(cf::Get<CFDictionaryRef>(fonts.get(), 0), "id", nullptr) == 0;
     }},
    {"GetFontsByPostscriptName",
     [](CoreAgentInterface& agent) {
         return agent.GetFontsByPostscriptName("Sample", 1, cf::MutableArray().get()) == 0;
     }},
    {"GetGlyphscanXMPData",
     [](CoreAgentInterface& agent) {
         std::string xml;
         return agent.GetGlyphscanInfo(1, xml) == 0;
     }},
    {"DeactivateFonts",
     [](CoreAgentInterface& agent) { return agent.DeactivateFonts(OneFont().get(), 0, nullptr) == 0; }},
    {"GetClientFontActivationStates",
     [](CoreAgentInterface& agent) {
         PluginActivationStates states;
         return agent.GetClientFontActivationStates({1}, states) == 0;
     }},
    {"SaveDocumentFonts",
     [](CoreAgentInterface& agent) { return agent.SaveDocumentFonts("/d.ai", true, nullptr) == 0; }},
    {"ExportFonts",
     [](CoreAgentInterface& agent) {
         return agent.CollectFontsUsedByCurrentDocument("/d.ai", "/out", OneFont().get(),
                                                        [](int, int) { return true; }) == 0;
     }},
    {"CreateTopLevelSet",
     [](CoreAgentInterface& agent) {
         int32_t setID = 0;
         return agent.CreateTopLevelSet("set", 1, setID) == 0;
     }},
    {"AddFontsToSets",
     [](CoreAgentInterface& agent) { return agent.AddFontsToSet(OneFont().get(), 1) == 0; }},
    {"GetIsLoggedIn", [](CoreAgentInterface& agent) { return agent.IsLoggedIn(); }},
    {"GetRunningStandalone", [](CoreAgentInterface& agent) { return agent.IsRunningStandalone(); }},
    {"CanExportFonts",
     [](CoreAgentInterface& agent) { return agent.CanExportFromWorkgroup(OneFont().get()); }},
    {"MotherMayI", [](CoreAgentInterface& agent) { return agent.canShowPostscriptReplacements(); }},
    {"GetAreSchemaVersionsInSync", [](CoreAgentInterface& agent) { return agent.AreSchemaVersionsInSync(); }},
    {"GetAllWorkgroupsForUser",
     [](CoreAgentInterface& agent) {
         std::vector<Workgroup> workgroups;
         return agent.GetAllWorkgroupsForUser({}, workgroups) == 0;
     }},
};

/// How often the agent is lost, how its starts go, what the user answers, and what is to come of it.
struct Course {
    const char* name;
    size_t losses;
    std::deque<int> launchErrors;
    std::deque<int32_t> answers;
    size_t launches;
    Boxes boxes;
    bool areServicesOn;
    bool succeeds;
};

constexpr std::pair<uint32_t, uint32_t> kNotice{600, 601};
constexpr std::pair<uint32_t, uint32_t> kQuestion{604, 605};

const Course kCourses[] = {
    {"no loss", 0, {}, {}, 0, {}, true, true},
    {"lost once", 1, {}, {}, 1, {}, true, true},
    {"lost once, started at the third try", 1, {2, 2}, {1, 1}, 3, {kQuestion, kQuestion}, true, true},
    {"lost once, given up", 1, {2}, {2}, 1, {kQuestion}, false, false},
    {"lost twice", 2, {}, {}, 2, {kNotice}, false, true},
    {"lost twice, given up at the second", 2, {0, 2}, {2}, 2, {kNotice, kQuestion}, false, false},
    {"lost four times", 4, {}, {}, 4, {kNotice, kNotice, kNotice}, false, true},
};

/// Before the call there is no facade to be had; during it the function answers so.
struct Loss {
    const char* name;
    bool isBeforeTheCall;
    ErrorCode code;
};

constexpr Loss kLosses[] = {{"before, refused", true, GIPCClient::kServiceUnavailable},
                            {"before, goodbye", true, GAgentIF::kShutdown},
                            {"during, broken off", false, GIPCClient::kServiceUnavailable},
                            {"during, goodbye", false, GAgentIF::kShutdown}};

class FaultMatrix : public CoreAgentInterfaceTest {
protected:
    void Run(const Operation& operation, const Loss& loss, const Course& course) {
        SCOPED_TRACE(std::string(operation.symbol) + ", " + loss.name + ", " + course.name);
        library.calls.clear();
        library.codes.clear();
        framework.shownBoxes.clear();
        processes.launchedCommandLines.clear();
        MarquellGlobals::SetPluginServicesEnabled(true);
        MarquellGlobals::SetConnectedToCore(true);
        library.codes[loss.isBeforeTheCall ? "GetPluginFacadeInstance" : operation.symbol] =
            Losses(loss, course);
        processes.launchErrors = course.launchErrors;
        framework.answers = course.answers;

        EXPECT_EQ(operation.succeeds(agent), course.succeeds);
        EXPECT_EQ(processes.launchedCommandLines.size(), course.launches);
        EXPECT_EQ(framework.shownBoxes, course.boxes);
        EXPECT_EQ(MarquellGlobals::ArePluginServicesEnabled(), course.areServicesOn);
        EXPECT_EQ(MarquellGlobals::IsConnectedToCore(), course.areServicesOn);
        const size_t restarts = course.launches - course.boxes.size() + CountOf(course.boxes, kNotice);
        EXPECT_EQ(static_cast<size_t>(library.CallsOf("ResetPluginFacadeInstance")), restarts);
    }

private:
    static size_t CountOf(const Boxes& boxes, std::pair<uint32_t, uint32_t> box) {
        return static_cast<size_t>(std::count(boxes.begin(), boxes.end(), box));
    }
    /// After a restart the library fetches a facade once more, to be told what the agent reports.
    static std::deque<ErrorCode> Losses(const Loss& loss, const Course& course) {
        std::deque<ErrorCode> codes;
        for (size_t index = 0; index < course.losses; ++index) {
            codes.push_back(loss.code);
            if (loss.isBeforeTheCall)
                codes.push_back(CoreErrorCodes::kSuccess);
        }
        return codes;
    }
};

}  // namespace

TEST_F(FaultMatrix, EveryOperationHealsOrGivesUpAsDocumented) {
    library.canExport = library.areSchemaVersionsInSync = true;
    library.permissions = {kPermission_ShowPostscriptReplacements};
    int count = 0;
    for (const Operation& operation : kOperations) {
        for (const Loss& loss : kLosses) {
            for (const Course& course : kCourses) {
                Run(operation, loss, course);
                ++count;
            }
        }
    }
    std::printf("%zu operations x %zu losses x %zu courses = %d cases\n", std::size(kOperations),
                std::size(kLosses), std::size(kCourses), count);
}
