#include "FontManagerInterface.h"

#include "FacadeTest.h"
#include "Records.h"
#include "VersionsAreCompatible.h"

using testing::HasSubstr;

TEST(VersionsAreCompatible, TheFirstThreeComponentsMustAgree) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"5.1.2.100", "5.1.2.7", true}, {"5.1.2.1", "5.1.3.1", false},
        {"5.1", "5.1.2.0", true},       {"5.1", "5.12.0.0", false},
        {"5.1.2", "5.1.20", false},     {"5.1.2.", "5.1.2.9", true},
        {"1.0.0.0", "9.9", true},       {"", "9.9", true},
        {"x.x.x.x", "x.x.x.x", true},   {"x.x.x.x", "8.0.0.0", false}};
    for (const auto& [one, other, areCompatible] : cases) {
        EXPECT_EQ(VersionsAreCompatible(one, other), areCompatible) << one << " and " << other;
        EXPECT_EQ(VersionsAreCompatible(other, one), areCompatible) << other << " and " << one;
    }
}

TEST_F(FacadeTest, WorkgroupsAreShownByTheNamesForTheirTypes) {
    library.workgroups = {{1, 0, "a"},     {2, 3, "b"},
                          {3, 4, "c"},     {4, 8, "d"},
                          {5, 12, "e"},    {6, 1, "Google Library (LOCALIZE ME)"},
                          {7, 1, "Print"}, {8, 99, "Font Library (LOCALIZE ME)"}};
    std::vector<Workgroup> workgroups;
    ASSERT_EQ(fontManager.GetFontManager()->GetAllWorkgroupsForUser({true, true, true}, workgroups), 0u);
    std::vector<std::string> names;
    for (const Workgroup& workgroup : workgroups)
        names.push_back(workgroup.name);
    EXPECT_THAT(names,
                testing::ElementsAre("string 214", "string 211", "string 213", "string 219", "string 222",
                                     "string 219", "Print", "Font Library (LOCALIZE ME)"));
    EXPECT_TRUE(CFEqual(
        cf::Get<CFDictionaryRef>(WorkgroupRecords(workgroups).get(), 1),
        Record(kGS_WorkgroupIDKey, 2, kGS_WorkgroupTypeKey, 3, kGS_WorkgroupNameKey, "string 211").get()));
    workgroups.clear();
    ASSERT_EQ(fontManager.GetFontManager()->GetAllWorkgroupsForUser({}, workgroups), 0u);
    EXPECT_EQ(workgroups.size(), 6u) << "neither the system's nor the Typekit library";
    EXPECT_EQ(fontManager.GetFontManager()->GetSystemWorkgroupID(), 3);
    library.workgroups.clear();
    EXPECT_EQ(fontManager.GetFontManager()->GetSystemWorkgroupID(), 3) << "for the life of the process";
}

TEST_F(FacadeTest, FontsGetTheNamesOfTheirWorkgroupsOfWhichOneIsToBeThere) {
    const auto fonts = List(Record(kGS_WorkgroupIDKey, int64_t{1} << 40), Record(kGS_WorkgroupIDKey, 8),
                            Record(kGS_WorkgroupIDKey, 7));
    fontManager.AddWorkgroupNamesToFonts(fonts.get());
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(fonts.get(), 2), kGS_WorkgroupNameKey), "Library");
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(fonts.get(), 1), kGS_WorkgroupNameKey), "");
    EXPECT_TRUE(fontManager.IsValidWorkgroupForUser(7));
    EXPECT_FALSE(fontManager.IsValidWorkgroupForUser(8));
    EXPECT_EQ(fontManager.GetWorkgroupNameFromID(8), "");
    EXPECT_EQ(fontManager.SetCurrentWorkgroup(CFSTR("Lib")), CoreErrorCodes::kNotFound);
    EXPECT_EQ(fontManager.SetCurrentWorkgroup(CFSTR("Library")), 0u);
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 7);
    EXPECT_TRUE(fontManager.IsWorkgroupAvailable());
    MarquellGlobals::SetPluginFunctionalityEnabled(false);
    fontManager.InitializeDefaultWorkgroup();
    EXPECT_TRUE(MarquellGlobals::IsPluginFunctionalityEnabled());
    library.codes["GetAllWorkgroupsForUser"] = {CoreErrorCodes::kError};
    EXPECT_FALSE(fontManager.IsWorkgroupAvailable());
    library.workgroups = {{7, kWorkgroupType_FontLibrary, "Library"}, {8, kWorkgroupType_FontLibrary, "B"}};
    framework.numbers["CurrentWorkgroup"] = 8;
    fontManager.HandleSelectWorkgroup();
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), 8) << "as the last time";
    EXPECT_TRUE(framework.shownDialogs.empty());
    library.workgroups = {{-2, kWorkgroupType_All, "All"}};
    EXPECT_FALSE(fontManager.IsWorkgroupAvailable()) << "none of the user's own";
    EXPECT_EQ(fontManager.WorkgroupsToChooseFrom().size(), 1u);
    fontManager.SetDefaultWorkgroupID(7);
    fontManager.OnHostAppShuttingDown();
    EXPECT_EQ(fontManager.GetDefaultWorkgroupID(), std::nullopt);
}

TEST_F(FacadeTest, FingerprintsComeBestMatchFirst) {
    const auto fingerprint = [](const std::string& version) {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>V</key><string>" + version +
               "</string></dict></plist>";
    };
    library.fonts = {{1, "Sample"}, {2, "Sample"}, {3, "Sample"}, {4, "Sample"}, {5, "Sample"}};
    library.fontVersions = {{1, "1.9"}, {2, "2.0"}, {3, "3.0"}, {4, "4.0"}, {5, "5.0"}};
    library.remoteFonts = {3};
    library.fingerprints = {
        {1, fingerprint("1.9")}, {2, fingerprint("2.0")}, {3, fingerprint("3.0")}, {5, "<no xml"}};
    const CFRef<CFArrayRef> data = fontManager.GetGlyphscanData("Sample", 7);
    ASSERT_EQ(cf::Count(data.get()), 2);
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(data.get(), 0), "V"), "2.0");
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(data.get(), 1), "V"), "1.9");
    for (const char* line :
         {"  Excluding version with checksum 0 because it's remote and we're running standalone.\n",
          "...GetGlyphscanInfo returned 0 but no Glyphscan info for Sample (databaseID 4).\n",
          "...CFPropertyListCreateFromXMLData failed on \"<no xml\".  OS message is:\n   \""})
        EXPECT_THAT(trace.Text(), HasSubstr(line));
    library.isStandalone = false;
    EXPECT_EQ(cf::Count(fontManager.GetGlyphscanData("Sample", 7).get()), 3)
        << "with a server, what is remote counts";
}

TEST_F(FacadeTest, FontsThatTheAgentWasNotToldOfAreLetGoLater) {
    const auto fonts = List(Record());
    library.codes["DeactivateFonts"] = {GIPCClient::kReplyTimeout, GIPCClient::kReplyTimeout, 0};
    EXPECT_EQ(fontManager.DeactivateFonts(fonts.get(), 0, nullptr), GIPCClient::kReplyTimeout);
    FakeClock clock;
    library.isAgentRunning = false;
    FontActivationTracker& tracker = *MarquellGlobals::GetSharedFontActivationTracker();
    tracker.CloseLater("A", true);
    const auto asked = library.CallsOf("GetIsCoreAgentProcessRunning");
    for (int second = 0; second <= 63; ++second, clock.ticks += 1000)
        fontManager.OnIdle();
    EXPECT_EQ(library.CallsOf("GetIsCoreAgentProcessRunning") - asked, 8) << "less and less often";
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 1);
    library.isAgentRunning = true;
    clock.ticks += 15000;
    fontManager.OnIdle();
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 2);
    EXPECT_FALSE(tracker.HasClosesToCatchUp());
    fontManager.OnUserAction();
    fontManager.OnUserAction();
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 3);
    library.codes["DeactivateFonts"] = {CoreErrorCodes::kError, GIPCClient::kReplyTimeout};
    const auto font = Record();
    EXPECT_EQ(fontManager.XTDeactivateFont(font.get(), 0), -1);
    EXPECT_EQ(fontManager.XTDeactivateFont(font.get(), 0), -1) << "and put off";
    clock.ticks += 500;  // the agent could be reached
    fontManager.OnIdle();
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 6);
    EXPECT_EQ(fontManager.XTDeactivateFont(font.get(), 0), 0);
}

TEST_F(FacadeTest, ThereIsOneFontManagerAndWhatWasPutOffGoesWithIt) {
    const auto fonts = List(Record());
    CoreAgentInterface* const one = fontManager.GetFontManager();
    EXPECT_TRUE(fontManager.CompatibleFontManagerIsRunning());
    EXPECT_EQ(fontManager.GetFontManager(), one);
    library.codes["DeactivateFonts"] = {GIPCClient::kReplyTimeout};
    EXPECT_NE(fontManager.DeactivateFonts(fonts.get(), 0, nullptr), 0u);
    fontManager.OnHostAppShuttingDown();
    EXPECT_FALSE(MarquellGlobals::ArePluginServicesEnabled() || MarquellGlobals::IsConnectedToCore());
    EXPECT_EQ(library.CallsOf("CleanUpOnShutdown"), 1);
    EXPECT_EQ(library.CallsOf("ActivateFonts"), 1) << "the fonts are kept";
    EXPECT_EQ(fontManager.XTDeactivateFont(Record().get(), 0),
              static_cast<int16_t>(kErrorMarquellNotRunning));
    MarquellGlobals::SetPluginServicesEnabled(true);
    MarquellGlobals::SetConnectedToCore(true);
    ASSERT_TRUE(MakeFunctional());
    library.calls.clear();
    fontManager.OnUserAction();
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 0) << "they have gone with that font manager";
}

TEST_F(FacadeTest, AFolderIsTakenOnlyIfOneIsChosen) {
    std::string chosen = "before";
    for (const auto& [answer, expected] :
         {std::pair<std::optional<std::string>, std::string>{std::nullopt, "before"},
          {"", "before"},
          {"/chosen", "/chosen"}}) {
        framework.chosenFolder = answer;
        EXPECT_EQ(fontManager.ShowSaveFolderDialog("/first", chosen), expected == "/chosen");
        EXPECT_EQ(chosen, expected);
    }
    EXPECT_EQ(framework.initialFolder, "/first");
}
