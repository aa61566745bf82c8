// What a plug-in gets from the client library of fonts and their files, while all is well.
#include "TestFonts.h"
#include "common/FontManagerLimits.h"
#include "common/LogFile.h"
#include "platform/Files.h"
#include "platform/System.h"
#include "tests/support/ClientTest.h"

namespace pellwick::test {
namespace {

using Names = std::vector<std::string>;
using Exported = std::pair<ErrorCode, Names>;

struct Opened {
    CFRef<CFMutableArrayRef> matched = cf::MutableArray();
    CFRef<CFMutableArrayRef> unmatched = cf::MutableArray();
    CFRef<CFMutableArrayRef> reported = cf::MutableArray();
};

class ClientFonts : public ClientTest {
protected:
    ErrorCode Open(const CFRef<CFMutableArrayRef>& requested, Opened& opened) {
        opened = Opened();
        return Ask(ActivateDocumentFontsByPath, "/document.indd", requested, opened.matched, opened.unmatched,
                   opened.reported);
    }
    Exported Export(const IDs& fonts, const std::string& folder) {
        const auto paths = cf::MutableArray();
        const ErrorCode code = Ask(ExportFonts, fonts, folder, paths);
        return {code, JsonOf(paths).get<Names>()};
    }
    void AddNewerVersions() {
        for (const char* name : {"Sample-Bold", "Sample-Italic"})
            mWorld.RunForJson({"add", mWorld.WriteFont(name, "2.0")});
    }
    IDs ConflictsOf(const IDs& fonts) { return IDsOf(Filled(GetFontConflicts, fonts)); }
    static IDs IDsOf(const Json& fonts) {
        IDs ids;
        for (const Json& font : fonts)
            ids.push_back(font[kGS_DatabaseIDKey]);
        return ids;
    }
    ErrorCode Enable(int64_t font, bool wholeFamily, bool enable) {
        return Ask(EnableDesignActivation, font, wholeFamily, enable, nullptr);
    }

    static constexpr int64_t kNewBold = 4;
    static constexpr int64_t kNewItalic = 5;
};

TEST_F(ClientFonts, ActivatesTheFontsOfADocumentAndLetsThemGo) {
    const auto requested =
        NamesArray({"Sample-Bold", "Sample-Black", "Sample Italic", "sample-bold", "Gone"});
    const auto stale = Record("Stale", Record());
    for (const auto font : cf::Elements<CFDictionaryRef>(requested.get()))
        cf::Set(const_cast<CFMutableDictionaryRef>(font), kGS_PossibleReplacementsKey, stale);
    cf::Append(requested, "Sample-Thin");
    Opened opened;
    ASSERT_EQ(Open(requested, opened), 0u);
    const Json matched = JsonOf(opened.matched);
    EXPECT_EQ(NamesOf(matched), (Names{"Sample-Bold", "Sample-Italic"})) << "each once";
    EXPECT_EQ(matched[0][kGS_ActivationStateKey], kFontActivationState_Inactive);
    const Json unmatched = JsonOf(opened.unmatched);
    ASSERT_EQ(unmatched.size(), 3u);
    const Json& replacements = unmatched[0][kGS_PossibleReplacementsKey];
    EXPECT_EQ(replacements.size(), 2u);
    EXPECT_TRUE(replacements.contains("Sample-Italic"));
    EXPECT_EQ(replacements["Sample-Bold"][kGS_DatabaseIDKey], kBold);
    EXPECT_EQ(unmatched[1], (Json{{kGS_PostScriptNameKey, "Gone"}}));
    EXPECT_EQ(CFArrayGetValueAtIndex(opened.unmatched.get(), 2), CFArrayGetValueAtIndex(requested.get(), 5))
        << "the very object, and a bare name stays one";
    ASSERT_EQ(cf::Count(opened.reported.get()), 3);
    const Json report = JsonOf(opened.reported)[1];
    EXPECT_EQ(report[kGS_PostScriptNameKey], "Sample Italic") << "as the host calls it";
    EXPECT_EQ(report[kGS_ActivationStateKey], kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(report[kGS_MatchedFontKey][kGS_ActivationStateKey], kFontActivationState_Inactive);
    EXPECT_TRUE(platform::IsExistingFile(report[kGS_PathKey]));
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);

    const auto states = cf::MutableDictionary();
    const auto asked = cf::NumberArray(IDs{kBold, kOther});
    ASSERT_EQ(Ask(GetClientFontActivationStates, asked, states), 0u);
    for (const CFIndex index : {0, 1})
        EXPECT_EQ(cf::ToBool(CFDictionaryGetValue(states.get(), CFArrayGetValueAtIndex(asked.get(), index))),
                  index == 0);
    EXPECT_EQ(Filled(DeactivateFonts, opened.matched, 0).size(), 2u);
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
}

TEST_F(ClientFonts, AreMatchedAsTheRequestWishes) {
    const std::pair<const char*, size_t> wishes[] = {
        {nullptr, 1}, {kGS_ExactMatchKey, 0}, {kGS_EntireFamilyKey, 2}};
    for (const auto& [wish, count] : wishes) {
        const auto request = Record(kGS_PostScriptNameKey, "sample-bold");
        if (wish != nullptr)
            cf::Set(request, wish, true);
        Opened opened;
        ASSERT_EQ(Open(List(request), opened), 0u);
        EXPECT_EQ(mWorld.ActiveFiles().size(), count) << wish;
        Ask(DeactivateFonts, opened.matched, 0, nullptr);
    }
}

TEST_F(ClientFonts, AReplacementThatWasChosenIsOfferedFirstTheNextTime) {
    CFRef<CFMutableArrayRef> unmatched;
    const auto candidateIn = [&](const char* document) {
        unmatched = cf::MutableArray();
        EXPECT_EQ(Ask(ActivateDocumentFontsByPath, document, NamesArray({"Sample-Black"}), nullptr, unmatched,
                      nullptr),
                  0u);
        const auto font = cf::Get<CFDictionaryRef>(unmatched.get(), 0);
        return cf::GetDictionary(cf::GetDictionary(font, kGS_PossibleReplacementsKey), "Sample-Italic");
    };
    const auto rankIn = [&](const char* document) {
        return cf::GetInt64(candidateIn(document), kGS_RankKey);
    };
    EXPECT_EQ(rankIn("/a.ai"), 2);
    const auto chosen = cf::MutableArray();
    cf::Append(chosen, candidateIn("/a.ai"));
    EXPECT_EQ(Ask(ActivateFonts, chosen, "a", nullptr, nullptr), 0u);
    EXPECT_EQ(rankIn("/a.ai"), 1);
    EXPECT_EQ(rankIn("/b.ai"), 2) << "another document";
}

TEST_F(ClientFonts, MoreFontsThanAMessageHoldsAreAskedForInParts) {
    Names names(kMaxFontsPerRequest + 12, "Sample-Thin");
    std::fill_n(names.begin() + 1, 9, "Sample-Black");
    names.front() = names.back() = "Sample-Bold";
    names[names.size() - 2] = "Sample-Italic";
    const auto requested = NamesArray(names);
    const auto remark = cf::String(std::string(kMaxMessageSize / 9, 'x'));
    for (CFIndex large = 1; large <= 9; ++large)
        cf::Set(const_cast<CFMutableDictionaryRef>(cf::Get<CFDictionaryRef>(requested.get(), large)),
                "Remark", remark);
    Opened opened;
    // The time for all parts may be over before the last one where a machine is busy.
    if (!Eventually([&] { return Open(requested, opened) != GIPCClient::kReplyTimeout; }))
        GTEST_SKIP() << "the machine is too busy";
    EXPECT_EQ(cf::Count(opened.matched.get()), 2) << "each font once";
    EXPECT_EQ(cf::Count(opened.reported.get()), 3);
    ASSERT_EQ(cf::Count(opened.unmatched.get()), 9 + static_cast<CFIndex>(kMaxFontsPerRequest));
    const auto unmatched = [&](size_t index) {
        return cf::Get<CFDictionaryRef>(opened.unmatched.get(), static_cast<CFIndex>(index));
    };
    EXPECT_EQ(cf::GetString(unmatched(8), kGS_PostScriptNameKey), "Sample-Black");
    EXPECT_EQ(cf::GetString(unmatched(9), kGS_PostScriptNameKey), "Sample-Thin");
    EXPECT_NE(cf::Get(unmatched(kMaxFontsWithReplacements - 1), kGS_PossibleReplacementsKey), nullptr);
    EXPECT_EQ(cf::Get(unmatched(kMaxFontsWithReplacements), kGS_PossibleReplacementsKey), nullptr);
    EXPECT_EQ(Filled(DeactivateFonts, opened.matched, 0).size(), 2u);
}

TEST_F(ClientFonts, AreFoundByNameFamilyAndFingerprint) {
    EXPECT_EQ(Filled(GetFontsByPostscriptName, "Sample-Bold", -2).size(), 1u);
    EXPECT_TRUE(Filled(GetFontsByPostscriptName, "Sample-Bold", kSystemID).empty());
    EXPECT_EQ(Filled(GetFontsByFamilyName, "Sample", -2).size(), 2u);
    EXPECT_EQ(NamesOf(Filled(FindFontsInSameFamilyForActivation, kBold)), Names{"Sample-Italic"});
    const Json info = Given<CFDictionaryRef>(GetFontInfoByID, kBold);
    EXPECT_EQ(info[kGS_FamilyKey], "Sample");
    EXPECT_EQ(info[kGS_FoundryKey], "TEST");
    CFDictionaryRef font = nullptr;
    EXPECT_EQ(Ask(GetFontInfoByID, 999, &font), CoreErrorCodes::kNotFound);

    const std::string xml = Given<CFStringRef>(GetGlyphscanXMPData, kBold);
    const auto data = AdoptCF(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(xml.data()),
                                           static_cast<CFIndex>(xml.size())));
    const Json fingerprint = JsonOf(AdoptCF(
        CFPropertyListCreateFromXMLData(kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr)));
    EXPECT_EQ(StringMember(fingerprint, kGS_ChecksumKey).size(), 64u);
    EXPECT_FALSE(fingerprint.contains(kGS_PathKey)) << "where it stands does not tell it apart";
    CFStringRef text = nullptr;
    EXPECT_EQ(Ask(GetGlyphscanXMPData, 4711, &text), CoreErrorCodes::kNotFound);
}

TEST_F(ClientFonts, EachOfTheirColumnsHasItsNumber) {
    std::set<int32_t> numbers;
    const auto note = [&](std::string_view name, auto function) {
        if constexpr (requires(int32_t number) { function(Facade(), &number); }) {
            const bool isColumn = name.ends_with("ColumnID");
            EXPECT_TRUE(!isColumn || numbers.insert(Told<int32_t>(function)).second) << name;
        }
    };
#define NOTE_NUMBER(symbol, parameters) note(#symbol, symbol);
    TARNWICK_PLUGIN_FUNCTIONS(NOTE_NUMBER)
#undef NOTE_NUMBER
    EXPECT_EQ(Told<int32_t>(GetFoundryNameColumnID), 6);
    EXPECT_EQ(std::pair(*numbers.begin(), *numbers.rbegin()), std::pair(1, 23));
}

TEST_F(ClientFonts, AFreshMachineHasThreeWorkgroupsAndAUserWhoMayActivate) {
    for (const auto function :
         {GetIsLoggedIn, GetRunningStandalone, GetAreSchemaVersionsInSync, GetIsCoreAgentProcessRunning})
        EXPECT_TRUE(Told<bool>(function));
    EXPECT_FALSE(Told<bool>(GetIsReplicationRunning));
    EXPECT_EQ(Given<CFStringRef>(GetDefaultLibraryName), "Font Library (LOCALIZE ME)");
    IDs types;
    const Json workgroups = Filled(GetAllWorkgroupsForUser);
    for (const Json& workgroup : workgroups)
        types.push_back(workgroup[kGS_WorkgroupTypeKey]);
    EXPECT_EQ(types, (IDs{1, 4, 2}));
    EXPECT_EQ(workgroups[1][kGS_WorkgroupIDKey], Told<int32_t>(GetSystemWorkgroupID));
    EXPECT_TRUE(Told<bool>(IsAllWorkgroups, workgroups[2][kGS_WorkgroupIDKey].get<int32_t>()));
    EXPECT_TRUE(Filled(GetGoogleFonts).empty());
    EXPECT_EQ(Ask(SetGoogleWebFontsEnabled, true), 0u);
    EXPECT_TRUE(Told<bool>(GetIsGoogleWebFontsEnabled));
    EXPECT_TRUE(Told<bool>(MotherMayI, kPermission_ActivateFonts));

    mWorld.RunForJson({"logout"});
    EXPECT_FALSE(Told<bool>(MotherMayI, kPermission_ActivateFonts));
}

TEST_F(ClientFonts, AreExportedUnderTheirNamesWithoutOverwritingOthers) {
    const std::string folder = "Gesammelte \u5b57\u4f53/";
    const std::string other = mWorld.Write(folder + "Sample-Bold-1.0.ttf", "another");
    const Exported expected{
        0, {mWorld.Path(folder + "Sample-Bold-1.0 2.ttf"), mWorld.Path(folder + "Sample-Italic-1.0.ttf")}};
    for (int time = 0; time < 2; ++time)  // the second time finds its own files
        EXPECT_EQ(Export({kBold, kItalic}, mWorld.Path(folder)), expected);
    EXPECT_EQ(ContentOf(other), "another");
    EXPECT_TRUE(Told<bool>(CanExportFonts, IDs{kBold, kItalic}));
    EXPECT_FALSE(Told<bool>(CanExportFonts, IDs{kBold, 999}));

    const std::string pair =
        mWorld.Write("Pair.ttc", MakeTestFontCollection({{"One", "One"}, {"Two", "Two"}}));
    mWorld.RunForJson({"add", pair});
    constexpr int64_t kOne = 4, kTwo = 5;
    platform::RemoveFile(Given<CFDictionaryRef>(GetFontInfoByID, kBold)[kGS_PathKey]);
    const std::string free = mWorld.Path("free/");
    constexpr ErrorCode kUnavailable = GZephyrinExportFonts::kFontUnavailableToExport;
    const std::tuple<IDs, std::string, Exported> cases[] = {
        {{}, free, {GZephyrinExportFonts::kNoFontsToExport, {}}},
        {{kItalic}, other, {GZephyrinExportFonts::kCouldNotCreateFolder, {}}},
        {{999, kBold, kOne, kTwo, kItalic},
         free,
         {kUnavailable, {free + "Pair.ttc", free + "Sample-Italic-1.0.ttf"}}},
        {{999}, free, {kUnavailable, {}}},
        {{kBold}, free, {kUnavailable, {}}}};
    for (const auto& [fonts, target, exported] : cases)
        EXPECT_EQ(Export(fonts, target), exported);
    EXPECT_EQ(mWorld.FilesBelow("free").size(), 4u) << "two fonts, and two lists of them";
}

TEST_F(ClientFonts, ConflictWithActiveFontsOfTheNameInOtherFiles) {
    AddNewerVersions();
    EXPECT_EQ(ConflictsOf({kBold, kNewBold, kOther, 999}), IDs());
    mWorld.RunForJson({"activate", std::to_string(kNewBold)});
    EXPECT_EQ(ConflictsOf({kBold}), IDs{kNewBold});
    EXPECT_EQ(ConflictsOf({kBold, kBold, kItalic, kOther}), IDs{kNewBold});
    EXPECT_EQ(ConflictsOf({kNewBold}), IDs()) << "no font conflicts with itself";
    EXPECT_EQ(IDsOf(Filled(EnableDesignActivation, kBold, false, true)), IDs{kNewBold});
    EXPECT_EQ(ConflictsOf({kBold, kNewBold}), (IDs{kBold, kNewBold}));
    Opened opened;
    ASSERT_EQ(Open(NamesArray({"Sample-Bold", "Other-Regular"}), opened), 0u);
    const Json reported = JsonOf(opened.reported);
    EXPECT_EQ(reported[0].value(kGS_ConflictKey, ""), "in conflict with Version 1.0 (Font Library)");
    EXPECT_FALSE(reported[1].contains(kGS_ConflictKey));
}

TEST_F(ClientFonts, AreHeldForDesignAndPreviewWhateverBecomesOfDocuments) {
    AddNewerVersions();
    EXPECT_EQ(Enable(kBold, false, true), 0u);
    EXPECT_EQ(IDsOf(Filled(ActivateFonts, IDs{kBold}, "/document", nullptr)), IDs{kBold});
    EXPECT_EQ(Deactivate({kBold}), 0u);
    EXPECT_EQ(StateOf(kBold), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(Ask(PreviewActivateFonts, IDs{kBold, kOther, 999}, true), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);
    EXPECT_EQ(Ask(PreviewActivateFonts, IDs{kBold, kOther}, false), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 1u);
    EXPECT_EQ(Enable(kBold, false, false), 0u);
    EXPECT_EQ(StateOf(kBold), kFontActivationState_Inactive);
    EXPECT_EQ(Enable(kBold, true, true), 0u);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u) << "one version of each font of the family";
    EXPECT_EQ(StateOf(kBold), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(StateOf(kNewItalic), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(Enable(kBold, true, false), 0u);
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
    EXPECT_EQ(Ask(PreviewActivateFonts, IDs{999}, true), CoreErrorCodes::kNotFound);
    EXPECT_EQ(Ask(PreviewActivateFonts, IDs{}, true), 0u);
    EXPECT_EQ(Enable(999, false, true), CoreErrorCodes::kNotFound);
    mWorld.EmptyVault();
    EXPECT_EQ(Enable(kBold, false, true), error_codes::GZephyrinAssetManager::kFontMissing);
    EXPECT_EQ(Ask(PreviewActivateFonts, IDs{kOther}, true), CoreErrorCodes::kNotFound);
    for (const int64_t font : {kBold, kOther})
        EXPECT_EQ(StateOf(font), kFontActivationState_Missing);
}

TEST(ClientLog, WritesIntoTheFolderForLogsAndStaysBounded) {
    const TestWorld world;
    const TestLibrary library;
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(library.InitThreadInstance(&thread), 0u);
    ASSERT_EQ(library.BeginLogging(thread, "Plugin.log"), 0u);
    const std::string piece(1 << 20, 'x');
    LogFile other;  // as of another host of the name
    EXPECT_FALSE(other.Open(world.Path("data/Vantorix/Logs/Plugin.log")));
    EXPECT_EQ(library.Log(thread, piece.c_str()), 0u);
    for (int count = 0; count < 6; ++count) {
        EXPECT_FALSE(other.Write(piece));
        EXPECT_EQ(library.Log(thread, piece.c_str()), 0u);
    }
    EXPECT_EQ(ContentOf(world.Path("data/Vantorix/Logs/Plugin.log")).size(), 3u << 20);
    EXPECT_EQ(ContentOf(world.Path("data/Vantorix/Logs/Plugin.log.1")).size(), 5u << 20);
    if (platform::kIsLinux) {  // where somebody may clear away what is in use
        std::filesystem::remove_all(world.Path("data/Vantorix/Logs"));
        EXPECT_EQ(library.Log(thread, "anew"), 0u);
        EXPECT_EQ(ContentOf(world.Path("data/Vantorix/Logs/Plugin.log")), "anew");
    }
    PluginThreadInstanceRef second = nullptr;  // of a thread that opened none: the log of the process
    ASSERT_EQ(library.InitThreadInstance(&second), 0u);
    EXPECT_EQ(library.Log(second, "end"), 0u);
    EXPECT_TRUE(ContentOf(world.Path("data/Vantorix/Logs/Plugin.log")).ends_with("end"));
    EXPECT_EQ(library.DestroyThreadInstance(second), 0u);
    EXPECT_EQ(library.DestroyThreadInstance(thread), 0u);
}

TEST(ClientLibrary, AnswersNullAndStaleArgumentsWithCodes) {
    const TestWorld world;
    const TestLibrary library;
    bool truth = false;
    const PluginFacadeRef stale = library.Facade();
    library.ResetPluginFacadeInstance();
    const PluginFacadeRef facade = library.Facade();
    constexpr ErrorCode kNull = CoreErrorCodes::kNullPointer;
    ExpectCodes({{library.GetIsLoggedIn(nullptr, &truth), GAgentIF::kUninitialized},
                 {library.GetIsLoggedIn(stale, &truth), GAgentIF::kAgentIFDestroyed},
                 {library.GetIsLoggedIn(facade, &truth), GIPCClient::kServiceUnavailable},
                 {library.RegisterForNotifications(facade, Note), GIPCClient::kServiceUnavailable},
                 {library.GetIsLoggedIn(facade, nullptr), kNull},
                 {library.ActivateFonts(facade, nullptr, nullptr, nullptr, nullptr), kNull},
                 {library.GetPluginFacadeInstance(nullptr), kNull},
                 {library.InitAppInstance(facade, nullptr, "1"), kNull},
                 {library.InitAppInstance(facade, "Host", "1"), GIPCClient::kServiceUnavailable},
                 {library.GetFontsByFamilyName(facade, nullptr, 1, cf::MutableArray().get()), kNull},
                 {library.RegisterForNotifications(facade, nullptr), kNull},
                 {library.RenderFontNamePreviewPNGs(facade, nullptr, nullptr, nullptr), kNull},
                 {library.TrackFontPanelClick(facade, 1), CoreErrorCodes::kNotImplemented}});
}

}  // namespace
}  // namespace pellwick::test
