// What a plug-in gets from the client library while all is well.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "TestFonts.h"
#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

class ClientTest : public testing::Test {
protected:
    void SetUp() override {
        mWorld.StartAgent();
        for (const char* name : {"Sample-Bold", "Sample-Italic", "Other-Regular"})
            mWorld.WriteFont(name);
        mWorld.RunForJson({"add", mWorld.Path("fonts")});
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    using Exported = std::pair<ErrorCode, std::vector<std::string>>;

    /// Exports fonts: the code, and the paths.
    Exported Export(const std::vector<int64_t>& fontIDs, const std::string& folder) {
        const auto paths = cf::MutableArray();
        Exported exported;
        exported.first = mLibrary.ExportFonts(mLibrary.Facade(), IDsArray(fontIDs).get(),
                                              cf::String(folder).get(), paths.get());
        for (CFIndex index = 0; index < cf::Count(paths.get()); ++index)
            exported.second.push_back(cf::ToUtf8(cf::Get<CFStringRef>(paths.get(), index)));
        return exported;
    }
    /// Where the font's file stands.
    std::string PathOf(int64_t fontID) {
        CFDictionaryRef font = nullptr;
        EXPECT_EQ(mLibrary.GetFontInfoByID(mLibrary.Facade(), static_cast<uint32_t>(fontID), &font), 0u);
        return cf::GetString(AdoptCF(font).get(), kGS_PathKey);
    }

    TestWorld mWorld;
    TestLibrary mLibrary;
};

// The workgroups of a fresh machine.
constexpr int32_t kLibraryID = 1;
constexpr int32_t kSystemID = 2;

CFDictionaryRef RecordAt(const CFRef<CFMutableArrayRef>& array, CFIndex index) {
    return cf::Get<CFDictionaryRef>(array.get(), index);
}

TEST(ClientLibrary, ExportsTheContractAndNothingElse) {
    std::set<std::string> expected;
#define COLLECT(symbol, parameters) expected.insert(#symbol);
    TARNWICK_PLUGIN_FUNCTIONS(COLLECT)
#undef COLLECT
    ASSERT_EQ(expected.size(), 86u);
    const TestLibrary library;
#define CHECK_BOUND(symbol, parameters) EXPECT_NE(library.symbol, nullptr) << #symbol;
    TARNWICK_PLUGIN_FUNCTIONS(CHECK_BOUND)
#undef CHECK_BOUND
    EXPECT_EQ(ExportedNames(), expected);
}

TEST_F(ClientTest, ActivatesTheFontsOfADocumentAndLetsThemGo) {
    const auto requested = NamesArray({"Sample-Bold", "Absent-Bold", "Sample Italic", "sample-bold"});
    const auto matched = cf::MutableArray();
    const auto unmatched = cf::MutableArray();
    const auto reported = cf::MutableArray();
    ASSERT_EQ(
        mLibrary.ActivateDocumentFontsByPath(mLibrary.Facade(), CFSTR("/document.indd"), requested.get(),
                                             matched.get(), unmatched.get(), reported.get()),
        0u);
    ASSERT_EQ(cf::Count(matched.get()), 2);  // one record per font, however often it was asked for
    EXPECT_EQ(cf::GetString(RecordAt(matched, 0), kGS_PostScriptNameKey), "Sample-Bold");
    EXPECT_EQ(cf::GetInt64(RecordAt(matched, 0), kGS_ActivationStateKey), kFontActivationState_Inactive);
    EXPECT_EQ(cf::GetString(RecordAt(matched, 1), kGS_PostScriptNameKey), "Sample-Italic");
    ASSERT_EQ(cf::Count(unmatched.get()), 1);
    EXPECT_EQ(RecordAt(unmatched, 0), RecordAt(requested, 1));  // the very object
    ASSERT_EQ(cf::Count(reported.get()), 3);
    const CFDictionaryRef report = RecordAt(reported, 1);
    EXPECT_EQ(cf::GetString(report, kGS_PostScriptNameKey), "Sample Italic");  // as the host calls it
    EXPECT_EQ(cf::GetInt64(report, kGS_ActivationStateKey), kFontActivationState_ActivatedByPlugin);
    EXPECT_EQ(cf::GetInt64(cf::GetDictionary(report, kGS_MatchedFontKey), kGS_ActivationStateKey),
              kFontActivationState_Inactive);
    EXPECT_TRUE(platform::IsExistingFile(cf::GetString(report, kGS_PathKey)));
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);

    const int64_t id = *cf::GetInt64(RecordAt(matched, 0), kGS_DatabaseIDKey);
    const auto states = cf::MutableDictionary();
    const auto asked = IDsArray({id, 1});
    ASSERT_EQ(mLibrary.GetClientFontActivationStates(mLibrary.Facade(), asked.get(), states.get()), 0u);
    EXPECT_EQ(cf::ToBool(CFDictionaryGetValue(states.get(), CFArrayGetValueAtIndex(asked.get(), 0))), true);
    EXPECT_EQ(cf::ToBool(CFDictionaryGetValue(states.get(), CFArrayGetValueAtIndex(asked.get(), 1))), false);

    const auto deactivated = cf::MutableArray();
    ASSERT_EQ(mLibrary.DeactivateFonts(mLibrary.Facade(), matched.get(), 0, deactivated.get()), 0u);
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
    EXPECT_TRUE(mWorld.ActiveFiles().empty());
}

TEST_F(ClientTest, FontsThatAreNotThereComeWithThoseThatAreNear) {
    const auto requested = cf::MutableArray();
    const auto stale = cf::MutableDictionary();
    cf::Set(stale, "Stale", cf::MutableDictionary());
    for (const char* name : {"Sample-Black", "Gone-Black"}) {
        const auto font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Set(font, kGS_PossibleReplacementsKey, stale);
        cf::Append(requested, font);
    }
    cf::Append(requested, "Sample-Thin");
    const auto unmatched = cf::MutableArray();
    ASSERT_EQ(mLibrary.ActivateDocumentFontsByPath(mLibrary.Facade(), CFSTR("/document.indd"),
                                                   requested.get(), nullptr, unmatched.get(), nullptr),
              0u);
    ASSERT_EQ(cf::Count(unmatched.get()), 3);
    const auto replacements = cf::GetDictionary(RecordAt(unmatched, 0), kGS_PossibleReplacementsKey);
    EXPECT_EQ(cf::Count(replacements), 2);
    const auto bold = cf::GetDictionary(replacements, "Sample-Bold");
    EXPECT_EQ(cf::GetString(bold, kGS_FamilyKey), "Sample");
    EXPECT_GT(cf::GetInt64(bold, kGS_DatabaseIDKey), 0);
    EXPECT_EQ(cf::GetInt64(bold, kGS_ActivationStateKey), kFontActivationState_Inactive);
    EXPECT_NE(cf::GetDictionary(replacements, "Sample-Italic"), nullptr);
    EXPECT_EQ(cf::GetString(RecordAt(unmatched, 1), kGS_PostScriptNameKey), "Gone-Black");
    EXPECT_EQ(cf::Get(RecordAt(unmatched, 1), kGS_PossibleReplacementsKey), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(unmatched.get(), 2), CFArrayGetValueAtIndex(requested.get(), 2))
        << "a bare name stays one";
    EXPECT_TRUE(mWorld.ActiveFiles().empty()) << "nothing is activated unasked";
}

TEST_F(ClientTest, MoreFontsThanAMessageHoldsAreAskedForInParts) {
    const auto requested = cf::MutableArray();
    const auto append = [&](const std::string& name, size_t size) {
        const auto font = cf::MutableDictionary();
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Set(font, "Remark", std::string(size, 'x'));
        cf::Append(requested, font);
    };
    append("Sample-Bold", 0);
    for (int index = 0; index < 9; ++index)
        append("Sample-Black", kMaxMessageSize / 9);
    for (size_t index = 0; index < kMaxFontsPerRequest; ++index)
        append("Sample-Thin", 0);
    append("Sample-Italic", 0);
    append("Sample-Bold", 0);
    const auto matched = cf::MutableArray();
    const auto unmatched = cf::MutableArray();
    const auto reported = cf::MutableArray();
    ASSERT_EQ(
        mLibrary.ActivateDocumentFontsByPath(mLibrary.Facade(), CFSTR("/document.indd"), requested.get(),
                                             matched.get(), unmatched.get(), reported.get()),
        0u);
    EXPECT_EQ(cf::Count(matched.get()), 2) << "each font once";
    EXPECT_EQ(cf::Count(reported.get()), 3);
    ASSERT_EQ(cf::Count(unmatched.get()), 9 + static_cast<CFIndex>(kMaxFontsPerRequest));
    EXPECT_EQ(cf::GetString(RecordAt(unmatched, 8), kGS_PostScriptNameKey), "Sample-Black");
    EXPECT_EQ(cf::GetString(RecordAt(unmatched, 9), kGS_PostScriptNameKey), "Sample-Thin");
    constexpr auto kLast = static_cast<CFIndex>(kMaxFontsWithReplacements) - 1;
    EXPECT_NE(cf::Get(RecordAt(unmatched, kLast), kGS_PossibleReplacementsKey), nullptr);
    EXPECT_EQ(cf::Get(RecordAt(unmatched, kLast + 1), kGS_PossibleReplacementsKey), nullptr);
    EXPECT_EQ(mWorld.ActiveFiles().size(), 2u);
    const auto deactivated = cf::MutableArray();
    EXPECT_EQ(mLibrary.DeactivateFonts(mLibrary.Facade(), matched.get(), 0, deactivated.get()), 0u);
    EXPECT_EQ(cf::Count(deactivated.get()), 2);
}

TEST_F(ClientTest, FindsFonts) {
    const auto fonts = cf::MutableArray();
    EXPECT_EQ(mLibrary.GetFontsByPostscriptName(mLibrary.Facade(), CFSTR("Sample-Bold"), -2, fonts.get()),
              0u);
    EXPECT_EQ(cf::Count(fonts.get()), 1);
    EXPECT_EQ(mLibrary.GetFontsByPostscriptName(mLibrary.Facade(), CFSTR("Sample-Bold"), 2, fonts.get()), 0u);
    EXPECT_EQ(cf::Count(fonts.get()), 1);  // it is not among the system's fonts
    EXPECT_EQ(mLibrary.GetFontsByFamilyName(mLibrary.Facade(), CFSTR("Sample"), -2, fonts.get()), 0u);
    EXPECT_EQ(cf::Count(fonts.get()), 3);
    const auto id = static_cast<uint32_t>(*cf::GetInt64(RecordAt(fonts, 0), kGS_DatabaseIDKey));
    const auto family = cf::MutableArray();
    EXPECT_EQ(mLibrary.FindFontsInSameFamilyForActivation(mLibrary.Facade(), id, family.get()), 0u);
    ASSERT_EQ(cf::Count(family.get()), 1);
    EXPECT_EQ(cf::GetString(RecordAt(family, 0), kGS_PostScriptNameKey), "Sample-Italic");
    CFDictionaryRef font = nullptr;
    EXPECT_EQ(mLibrary.GetFontInfoByID(mLibrary.Facade(), id, &font), 0u);
    EXPECT_EQ(cf::GetString(AdoptCF(font).get(), kGS_FamilyKey), "Sample");
    EXPECT_EQ(mLibrary.GetFontInfoByID(mLibrary.Facade(), 999, &font), CoreErrorCodes::kNotFound);
}

TEST_F(ClientTest, TellsFontsApartByTheirFingerprints) {
    CFStringRef text = nullptr;
    ASSERT_EQ(mLibrary.GetGlyphscanXMPData(mLibrary.Facade(), 1, &text), 0u);
    const std::string xml = cf::ToUtf8(AdoptCF(text).get());
    text = nullptr;
    EXPECT_EQ(mLibrary.GetGlyphscanXMPData(mLibrary.Facade(), 4711, &text), CoreErrorCodes::kNotFound);
    EXPECT_EQ(text, nullptr);
    const auto data = AdoptCF(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(xml.data()),
                                           static_cast<CFIndex>(xml.size())));
    const auto list = AdoptCF(
        CFPropertyListCreateFromXMLData(kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr));
    const auto fingerprint = cf::As<CFDictionaryRef>(list.get());
    EXPECT_EQ(cf::GetString(fingerprint, kGS_ChecksumKey).size(), 64u);
    EXPECT_NE(cf::GetString(fingerprint, kGS_PostScriptNameKey), "");
    EXPECT_EQ(cf::GetString(fingerprint, kGS_PathKey), "") << "where it stands does not tell it apart";
}

TEST_F(ClientTest, AnswersForAFreshMachine) {
    const PluginFacadeRef facade = mLibrary.Facade();
    const auto truth = [&](auto function) {
        bool answer = false;
        EXPECT_EQ(function(facade, &answer), 0u);
        return answer;
    };
    EXPECT_TRUE(truth(mLibrary.GetIsLoggedIn));
    EXPECT_TRUE(truth(mLibrary.GetRunningStandalone));
    EXPECT_TRUE(truth(mLibrary.GetAreSchemaVersionsInSync));
    EXPECT_TRUE(truth(mLibrary.GetIsCoreAgentProcessRunning));
    EXPECT_FALSE(truth(mLibrary.GetIsReplicationRunning));
    CFStringRef name = nullptr;
    EXPECT_EQ(mLibrary.GetDefaultLibraryName(facade, &name), 0u);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(name).get()), "Font Library (LOCALIZE ME)");
    const auto workgroups = cf::MutableArray();
    EXPECT_EQ(mLibrary.GetAllWorkgroupsForUser(facade, workgroups.get()), 0u);
    std::vector<int64_t> types;
    for (CFIndex index = 0; index < cf::Count(workgroups.get()); ++index)
        types.push_back(*cf::GetInt64(RecordAt(workgroups, index), kGS_WorkgroupTypeKey));
    EXPECT_EQ(types, (std::vector<int64_t>{1, 4, 2}));
    int32_t system = 0;
    EXPECT_EQ(mLibrary.GetSystemWorkgroupID(facade, &system), 0u);
    EXPECT_EQ(cf::GetInt64(RecordAt(workgroups, 1), kGS_WorkgroupIDKey), system);
    bool isAll = false;
    EXPECT_EQ(
        mLibrary.IsAllWorkgroups(
            facade, static_cast<int32_t>(*cf::GetInt64(RecordAt(workgroups, 2), kGS_WorkgroupIDKey)), &isAll),
        0u);
    EXPECT_TRUE(isAll);
}

TEST_F(ClientTest, NothingIsActivatedOrPermittedForAUserWhoIsLoggedOut) {
    mWorld.RunForJson({"logout"});
    CFRef<CFMutableArrayRef> matched;
    EXPECT_EQ(mLibrary.Activate("/document", {"Sample-Bold"}, matched), GZephyrinServerFacade::kNotLoggedIn);
    bool isPermitted = true;
    EXPECT_EQ(mLibrary.MotherMayI(mLibrary.Facade(), kPermission_ActivateFonts, &isPermitted), 0u);
    EXPECT_FALSE(isPermitted);
    mWorld.RunForJson({"login", "tester"});
    EXPECT_EQ(mLibrary.MotherMayI(mLibrary.Facade(), kPermission_ActivateFonts, &isPermitted), 0u);
    EXPECT_TRUE(isPermitted);
}

TEST_F(ClientTest, ExportsFontFilesUnderTheirNamesWithoutOverwritingOthers) {
    const auto ids = mLibrary.Activate("/document", {"Sample-Bold", "Sample-Italic"});
    const std::string folder = mWorld.Path("Gesammelte \u5b57\u4f53");
    const auto in = [&](const std::string& name) { return mWorld.Path("Gesammelte \u5b57\u4f53/" + name); };
    std::string otherContent = MakeTestFont({"Sample-Bold", "Sample", "Bold", "1.0"});
    otherContent.back() ^= 1;  // another file of the same size
    const std::string other = mWorld.Write("Gesammelte \u5b57\u4f53/Sample-Bold-1.0.ttf", otherContent);
    bool canExport = false;
    EXPECT_EQ(mLibrary.CanExportFonts(mLibrary.Facade(), IDsArray(ids).get(), &canExport), 0u);
    EXPECT_TRUE(canExport);
    EXPECT_EQ(mLibrary.CanExportFonts(mLibrary.Facade(), IDsArray({ids[0], 999}).get(), &canExport), 0u);
    EXPECT_FALSE(canExport);
    for (int time = 0; time < 2; ++time) {  // the second time finds its own files
        EXPECT_EQ(Export(ids, folder),
                  (Exported{0, {in("Sample-Bold-1.0 2.ttf"), in("Sample-Italic-1.0.ttf")}}));
    }
    std::string content;
    platform::ReadWholeFile(other, content, otherContent.size());
    EXPECT_TRUE(content == otherContent);
    EXPECT_EQ(Export({}, folder).first, GZephyrinExportFonts::kNoFontsToExport);
    EXPECT_EQ(Export(ids, other).first, GZephyrinExportFonts::kCouldNotCreateFolder);
}

TEST_F(ClientTest, ExportsEachFileOnceAndTheOthersWhenOneIsMissing) {
    mWorld.Write("more/Collection.ttc", MakeTestFontCollection({{"One", "One"}, {"Two", "Two"}}));
    mWorld.RunForJson({"add", mWorld.Path("more")});
    const auto ids = mLibrary.Activate("/document", {"Sample-Bold", "One", "Two", "Sample-Italic"});
    ASSERT_EQ(ids.size(), 4u);
    platform::RemoveFile(PathOf(ids[0]));
    const std::string folder = mWorld.Path("exported");
    const std::string collection = mWorld.Path("exported/Collection.ttc");
    const auto [code, paths] = Export({999, ids[0], ids[1], ids[2], ids[3]}, folder);
    EXPECT_EQ(code, GZephyrinExportFonts::kFontUnavailableToExport);
    EXPECT_EQ(paths, (std::vector<std::string>{collection, mWorld.Path("exported/Sample-Italic-1.0.ttf")}));
    EXPECT_EQ(Export({ids[3], 999}, folder).first, GZephyrinExportFonts::kFontUnavailableToExport);
    EXPECT_EQ(Export({999}, folder).first, GZephyrinExportFonts::kFontUnavailableToExport);
    for (const int64_t face : {ids[1], ids[2]})  // one at a time comes to the same
        EXPECT_EQ(Export({face}, folder), (Exported{0, {collection}}));
    EXPECT_EQ(mWorld.FilesBelow("exported").size(), 2u);
}

TEST_F(ClientTest, ExportsNothingUnderANameThatWouldBeTooLong) {
    const std::string name = std::string(251, 'x') + ".ttf";
    mWorld.Write("long/" + name, MakeTestFont({"Long", "Long"}));
    mWorld.RunForJson({"add", mWorld.Path("long")});
    const auto ids = mLibrary.Activate("/document", {"Long"});
    mWorld.Write("exported/" + name, "another file");
    EXPECT_EQ(Export(ids, mWorld.Path("exported")), (Exported{GZephyrinExportFonts::kPathTooLong, {}}));
    EXPECT_EQ(Export(ids, mWorld.Path("elsewhere")), (Exported{0, {mWorld.Path("elsewhere/" + name)}}));
}

TEST_F(ClientTest, PutsFontsTogetherInSets) {
    const PluginFacadeRef facade = mLibrary.Facade();
    const auto create = [&](const char* name, int32_t workgroup, int32_t& set) {
        return mLibrary.CreateTopLevelSet(facade, cf::String(name).get(), workgroup, &set);
    };
    const auto size = [&](const char* name) {
        return mWorld.RunForJson({"set", "show", name})["fonts"].size();
    };
    int32_t poster = 0;
    int32_t flyer = 0;
    ASSERT_EQ(create("Plakat \u5b57\u4f53", kLibraryID, poster), 0u);
    ASSERT_EQ(create("Flyer", kLibraryID, flyer), 0u);
    int32_t untouched = -5;
    const struct {
        const char* name;
        int32_t workgroup;
        ErrorCode code;
    } refusals[] = {
        {"Flyer", kLibraryID, CoreErrorCodes::kItemAlreadyExists},
        {"", kLibraryID, CoreErrorCodes::kMissingParam},
        {"New", kWorkgroupID_All, GZephyrinSetManager::kCannotCreateSharedSetsInAllFontsWorkgroup},
        {"New", kSystemID, GZephyrinSetManager::kCannotAddSetsToSystemWorkgroup},
        {"New", 999, GZephyrinSetManager::kWorkGroupIDDoesNotExist}};
    for (const auto& [name, workgroup, code] : refusals)
        EXPECT_EQ(create(name, workgroup, untouched), code) << name << workgroup;
    EXPECT_EQ(untouched, -5);

    const auto ids = mLibrary.Activate("/document", {"Sample-Bold", "Sample-Italic"});
    const struct {
        std::vector<int64_t> fonts;
        std::vector<int64_t> sets;
        ErrorCode code;
        size_t inPoster;
    } additions[] = {{{ids[0], 999}, {poster}, CoreErrorCodes::kNotFound, 0},
                     {{ids[0], -1}, {poster}, CoreErrorCodes::kNotFound, 0},
                     {ids, {poster, 999}, GZephyrinSetManager::kSetNotFound, 0},
                     {ids, {poster, (int64_t{1} << 32) + flyer}, GZephyrinSetManager::kSetNotFound, 0},
                     {{ids[0]}, {poster, flyer}, 0, 1},
                     {ids, {poster}, 0, 2}};
    for (const auto& [fonts, sets, code, inPoster] : additions) {
        EXPECT_EQ(mLibrary.AddFontsToSets(facade, IDsArray(fonts).get(), IDsArray(sets).get()), code);
        EXPECT_EQ(size("Plakat \u5b57\u4f53"), inPoster);
    }
    EXPECT_EQ(size("Flyer"), 1u);
}

TEST_F(ClientTest, RemembersWhatADocumentUses) {
    const CFStringRef path = CFSTR("/Dokumente/\u0448\u0440\u0438\u0444\u0442.indd");
    CFStringRef usage = nullptr;
    EXPECT_EQ(mLibrary.GetFontUsage(mLibrary.Facade(), path, &usage), CoreErrorCodes::kNotFound);
    EXPECT_EQ(mLibrary.SaveDocumentFonts(mLibrary.Facade(), path, true, CFSTR("{\"pages\":3}")), 0u);
    EXPECT_EQ(mLibrary.SaveDocumentFonts(mLibrary.Facade(), path, false, nullptr), 0u);
    ASSERT_EQ(mLibrary.GetFontUsage(mLibrary.Facade(), path, &usage), 0u);
    EXPECT_EQ(cf::ToUtf8(AdoptCF(usage).get()), "{\"pages\":3}");
    EXPECT_EQ(mLibrary.ClearDocumentSlug(mLibrary.Facade(), path), 0u);
    EXPECT_EQ(mLibrary.GetFontUsage(mLibrary.Facade(), path, &usage), CoreErrorCodes::kNotFound);
}

TEST(ClientLog, WritesIntoTheFolderForLogsAndStaysBounded) {
    TestWorld world;
    const TestLibrary library;
    PluginThreadInstanceRef thread = nullptr;
    ASSERT_EQ(library.InitThreadInstance(&thread), 0u);
    ASSERT_EQ(library.BeginLogging(thread, "Plugin.log"), 0u);
    const std::string piece(1 << 20, 'x');
    for (int count = 0; count < 13; ++count)
        EXPECT_EQ(library.Log(thread, piece.c_str()), 0u);
    EXPECT_EQ(library.DestroyThreadInstance(thread), 0u);
    uint64_t size = 0;
    EXPECT_FALSE(platform::FileSize(world.Path("data/Vantorix/Logs/Plugin.log"), size));
    EXPECT_EQ(size, 3u << 20);
    EXPECT_FALSE(platform::FileSize(world.Path("data/Vantorix/Logs/Plugin.log.1"), size));
    EXPECT_EQ(size, 5u << 20);
}

TEST(ClientLibrary, AnswersNullAndStaleArgumentsWithCodes) {
    TestWorld world;
    const TestLibrary library;
    bool truth = false;
    const PluginFacadeRef stale = library.Facade();
    library.ResetPluginFacadeInstance();
    const PluginFacadeRef facade = library.Facade();
    const std::pair<ErrorCode, ErrorCode> answers[] = {
        {library.GetIsLoggedIn(nullptr, &truth), GAgentIF::kUninitialized},
        {library.GetIsLoggedIn(stale, &truth), GAgentIF::kAgentIFDestroyed},
        {library.GetIsLoggedIn(facade, &truth), GIPCClient::kServiceUnavailable},
        {library.GetIsLoggedIn(facade, nullptr), CoreErrorCodes::kNullPointer},
        {library.ActivateFonts(facade, nullptr, nullptr, nullptr, nullptr), CoreErrorCodes::kNullPointer},
        {library.GetPluginFacadeInstance(nullptr), CoreErrorCodes::kNullPointer},
        {library.RegisterForNotifications(facade, nullptr), CoreErrorCodes::kNullPointer},
        {library.GetGlyphscanXMPData(facade, 1, nullptr), CoreErrorCodes::kNullPointer},
        {library.TrackFontPanelClick(facade, 1), CoreErrorCodes::kNotImplemented}};
    for (size_t index = 0; index < std::size(answers); ++index)
        EXPECT_EQ(answers[index].first, answers[index].second) << index;
}

}  // namespace
}  // namespace pellwick::test
