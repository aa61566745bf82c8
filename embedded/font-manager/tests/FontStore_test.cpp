#include "store/FontStore.h"

#include "activation/FontMatcher.h"
#include "activation/ReplacementFinder.h"
#include "tests/support/StoreTest.h"
#include "tests/support/TestWorld.h"

namespace pellwick {
namespace {

using testing::ElementsAre;
using IDs = std::vector<uint32_t>;

IDs IDsOf(const std::vector<Font>& fonts) {
    IDs ids;
    for (const Font& font : fonts)
        ids.push_back(font.id);
    return ids;
}

class FontStoreTest : public StoreTest {
protected:
    IDs MatchOf(const RequestedFont& request) {
        std::vector<Font> fonts = MatchFonts(mFonts, request);
        const uint32_t best = fonts.empty() ? 0 : fonts[IndexOfBestMatch(fonts, request)].id;
        SortByMatch(fonts, request);
        EXPECT_EQ(fonts.empty() ? 0 : fonts.front().id, best);
        return IDsOf(fonts);
    }
    IDs ReplacementsFor(const RequestedFont& request) { return IDsOf(mFinder.Find(request)); }
    IDs ReplacementsFor(const char* name) { return ReplacementsFor({name, "", "", "", 0}); }

    ReplacementFinder mFinder{mFonts};
};

TEST_F(FontStoreTest, FindsTheFontsThatARequestMeansTheBestFirst) {
    Add("sample-bold", "sample", "bold");              // 1
    Add("Sample-Bold", "Sample", "Bold");              // 2
    Add("SmplSns-Bd", "Sample Sans", "Bold");          // 3
    Add("SmplSns-Rg", "Sample Sans", "Regular");       // 4
    Add("Many", "Many", "Regular", "Version 1.0");     // 5
    Add("Many", "Many", "Regular", "Version 2.0");     // 6
    Add("Many", "Many", "Regular", "Version 3.0", 5);  // 7
    Add("Many", "Many", "Regular", "unreadable");      // 8
    Add("Hyphen", "-", "-");                           // 9
    Add("SmplSns-Ob", "Sample Sans", "Oblique");       // 10
    Add("Wide-Cond", "Wide", "Condensed");             // 11
    Add("Wide-CondBold", "Wide", "Condensed Bold");    // 12
    Add("Solo", "Solo", "Black");                      // 13
    const std::pair<RequestedFont, IDs> cases[] = {
        {{"Sample-Bold", "", "", "", 0}, {2}},  // exactly, before in any case
        {{"sample-bold", "", "", "", 0}, {1}},
        {{"SAMPLE-BOLD", "", "", "", 0}, {1, 2}},
        {{"Sample", "", "", "", 0}, {}},
        {{"Sample Sans Bold", "", "", "", 0}, {3}},
        {{"Sample Sans-Bold", "", "", "", 0}, {3}},
        {{"SampleSans-Bold", "", "", "", 0}, {3}},
        {{"", "Sample Sans", "Bold", "", 0}, {3}},
        {{"", "Sample Sans", "", "", 0}, {4}},  // a family alone means its regular style
        {{"", "Wide", "", "", 0}, {}},          // or its only one
        {{"", "Solo", "", "", 0}, {13}},
        {{"Unknown-Bold", "Sample Sans", "Bold", "", 0}, {3}},
        {{"", "Sample Sans", "Medium", "", 0}, {}},
        {{"Sample Sans Bold", "Sample Sans", "", "", 0}, {3}},  // the full name before the family alone
        {{"SampleSans-Bd", "Sample Sans", "", "", 0}, {3}},
        {{"SampleSans-Light", "Sample Sans", "", "", 0}, {}},  // it tells the style, which is not there
        {{"Unknown-Light", "Sample Sans", "", "", 0}, {4}},
        {{"", "Sample Sans", "Italic", "", 0}, {10}},  // styles in other words
        {{"", "Sample Sans", "700", "", 0}, {3}},
        {{"", "Sample Sans", "650", "", 0}, {}},
        {{"Sample Sans:style=Bold", "", "", "", 0}, {3}},  // as fontconfig writes names
        {{"Sample Sans,Other:style=Oblique,Italic:lang=de", "", "", "", 0}, {10}},
        {{"Sample Sans:bold", "", "", "", 0}, {3}},
        {{"Sample\\ Sans:", "", "", "", 0}, {4}},
        {{"Many", "", "", "", 4}, {6, 5, 8, 7}},
        {{"Many", "", "", "", 5}, {7, 6, 5, 8}},
        {{"Many", "", "", "", 5, "checksum8"}, {8}},  // the file that the document was made with
        {{"Many", "", "", "", 5, "elsewhere"}, {7, 6, 5, 8}},
        {{"_", "", "", "", 0}, {}}};  // nothing goes by an empty name
    for (const auto& [request, found] : cases)
        EXPECT_EQ(MatchOf(request), found) << request.postScriptName << request.family << request.style;
    EXPECT_TRUE(mFonts.ListNamed("", 0, kListPageSize).empty());
    SetMissing(6);
    EXPECT_EQ(MatchOf({"Many", "", "", "", 4}).front(), 5u);
}

TEST_F(FontStoreTest, TheOutlinesOfTheDocumentsFileDecideBetweenVersions) {
    for (const char* glyphs : {"old", "new", "", "old"}) {
        FontFace face;
        face.postScriptName = "Sample";
        face.version = "Version " + std::to_string(mFonts.Count() + 1);
        face.glyphs = glyphs;
        mFonts.Add({0, "file " + face.version, "Sample.ttf", ".ttf", 10}, {face});
    }
    RequestedFont request{"Sample", "", "", "", 0};
    EXPECT_EQ(MatchOf(request).front(), 4u);
    request.glyphs = "old";
    EXPECT_EQ(MatchOf(request), (IDs{4, 1}));
    request.glyphs = "new";
    EXPECT_EQ(MatchOf(request), IDs{2});
}

TEST_F(FontStoreTest, AFontDrawnForItsStyleGoesBeforeAnInstanceOfAVariableOne) {
    FontFace instance;
    instance.face = 3 << 16;
    instance.postScriptName = "Sample-SemiBold";
    instance.family = "Sample";
    instance.style = "SemiBold";
    instance.version = "Version 9.0";
    mFonts.Add({0, "variable", "Sample-VF.ttf", ".ttf", 10}, {instance});
    const RequestedFont request{"Sample-SemiBold", "", "", "", 0};
    ASSERT_EQ(MatchOf(request).size(), 1u);
    EXPECT_EQ(MatchReason(MatchFonts(mFonts, request).front(), request),
              "an instance of the variable font Sample-VF.ttf");
    const uint32_t drawn = Add("Sample-SemiBold", "Sample", "SemiBold");
    EXPECT_EQ(MatchOf(request), IDs{drawn});
    mFonts.SetPreferred(*mFonts.Find(drawn), true);
    SetMissing(drawn);
    EXPECT_EQ(MatchOf(request), (IDs{1, drawn})) << "whatever is preferred, its file is gone";
    mFonts.SetFileMissing(mFonts.Find(drawn)->file.id, false);
    EXPECT_EQ(MatchReason(MatchFonts(mFonts, request).front(), request), "");
}

TEST_F(FontStoreTest, MatchesAndReplacementsHaveReasons) {
    const Font font = *mFonts.Find(Add("SmplSns-BdIt", "Sample Sans", "Bold Italic"));
    const std::pair<RequestedFont, const char*> matches[] = {
        {{"smplsns-bdit", "", "", "", 0}, ""},
        {{"", "Sample Sans", "Bold Italic", "", 0}, ""},
        {{"Sample Sans Bold Italic", "", "", "", 0}, "by its full name"},
        {{"Other", "Sample Sans", "700 Oblique", "", 0}, "by family and style"}};
    for (const auto& [request, reason] : matches)
        EXPECT_EQ(MatchReason(font, request), reason) << request.postScriptName;
    const std::pair<RequestedFont, const char*> replacements[] = {
        {{"SampleSansPS-BoldItalicMT", "", "", "", 0}, "same name, written differently"},
        {{"SampleSans-SemiboldCond", "", "", "", 0},
         "same family, Bold Italic instead of SemiBold Condensed"},
        {{"", "Sample Sans", "", "", 0}, "same family, Bold Italic instead of Regular"}};
    for (const auto& [request, reason] : replacements)
        EXPECT_EQ(ReplacementReason(font, request), reason) << request.postScriptName;
}

// A collection may hold so many faces of one name that comparing each with each would never end.
TEST_F(FontStoreTest, ANameAnswersForAFewOfItsFonts) {
    constexpr size_t kFaces = 50000;
    const uint32_t missing = Add("Many", "Many", "Regular");
    SetMissing(missing);
    FontFace face;
    face.postScriptName = face.family = "Many";
    face.style = "Regular";
    face.lookupNames = {"ManyRegular"};
    std::vector<FontFace> faces(kFaces, face);
    for (size_t index = 0; index < faces.size(); ++index)
        faces[index].face = static_cast<int64_t>(index);
    mFonts.Add({0, "present", "many.ttc", ".ttc", 10}, faces);
    for (const std::vector<Font>& fonts :
         {MatchFonts(mFonts, {"Many", "", "", "", 0}), mFonts.FindByPostScriptName("many"),
          mFonts.FindByLookupName("Many Regular")}) {
        ASSERT_EQ(fonts.size(), size_t{kMaxFontsOfName});
        EXPECT_EQ(fonts.front().id, missing + 1) << "the missing one comes last";
        EXPECT_EQ(fonts.back().id, missing + kMaxFontsOfName);
    }
    EXPECT_EQ(MatchFonts(mFonts, {"", "Many", "", "", 0}).size(), size_t{kMaxFontsOfName});
    EXPECT_EQ(mFonts.FindByFamily("Many").size(), size_t{kListPageSize});
    const std::vector<Font> page = mFonts.ListNamed("Many", 0, kListPageSize);
    ASSERT_EQ(page.size(), size_t{kListPageSize}) << "people mean them all";
    EXPECT_EQ(mFonts.ListNamed("Many", page.back().id, kListPageSize).front().id, page.back().id + 1);
    mActivations.AddUserActivation(missing + 4000);
    EXPECT_EQ(IDsOf(mFonts.FindActive("Many")), IDs{missing + 4000}) << "wherever it stands";
}

TEST_F(FontStoreTest, NamesThatAreOnlySpelledDifferentlyAreTheNearest) {
    Add("SampleSansStd-Bold", "Sample Sans Std", "Bold");
    Add("SampleSansStd-Black", "Sample Sans Std", "Black");
    Add("Other-Bold", "Other", "Bold");
    for (const char* name :
         {"SampleSans-Bold", "SAMPLE SANS BOLD", "SampleSansPS-BoldMT", "SampleSansLT-Bold",
          "ABCDEF+SampleSansPro-Bold", "SampleSans,Bold", "SampleSans-Bd"})
        EXPECT_THAT(ReplacementsFor(name), ElementsAre(1, 2)) << name;
    EXPECT_THAT(ReplacementsFor("samplesansstd bold"), ElementsAre(1))
        << "without capitals a family's words cannot be told apart";
    Add("Claim-Bold", "Claim", "Regular");
    Add("Claim-Semibold", "Claim", "Semibold");
    EXPECT_THAT(ReplacementsFor("CLAIM BOLD"), ElementsAre(4, 5)) << "whatever style it claims";
    for (const char* name : {"Specimen-Bold", "Sam-Bold", "SampleSerif-Bold", "", "-", "Bold-Sample"})
        EXPECT_THAT(ReplacementsFor(name), ElementsAre()) << name;
}

TEST_F(FontStoreTest, FontsOfTheSameMeasuresAreOfferedInTheSameStyle) {
    Add("LiberationSans", "Liberation Sans", "Regular");
    Add("LiberationSans-Bold", "Liberation Sans", "Bold");
    Add("TeXGyreHeros-Bold", "TeX Gyre Heros", "Bold");
    Add("LiberationSerif", "Liberation Serif", "Regular");
    EXPECT_THAT(ReplacementsFor("Helvetica"), ElementsAre(1));
    EXPECT_THAT(ReplacementsFor("Arial-BoldMT"), ElementsAre(2, 3));
    Add("NimbusRoman-Regular", "Nimbus Roman", "Regular");
    EXPECT_THAT(ReplacementsFor("TimesNewRomanPSMT"), ElementsAre(4, 5));
    EXPECT_THAT(ReplacementsFor("Arial-BoldItalicMT"), ElementsAre());
    EXPECT_THAT(ReplacementsFor("LiberationSans-Italic"), ElementsAre(1, 2)) << "its own family";
    EXPECT_EQ(ReplacementReason(*mFonts.Find(1), {"ArialMT", "", "", "", 0}), "as wide as ArialMT");
}

TEST_F(FontStoreTest, InTheFamilyTheNearestStylesAreOffered) {
    Add("Fam-1", "Sample", "Regular");
    Add("Fam-2", "Sample", "Italic");
    Add("Fam-3", "Sample", "Bold");
    Add("Fam-4", "Sample", "Bold Italic");
    Add("Fam-5", "Sample Condensed", "Bold");
    Add("Fam-6", "Sample Light", "Italic");
    Add("Fam-7", "Samples", "Black");
    EXPECT_THAT(ReplacementsFor("Sample-Black"), ElementsAre(3, 1, 4, 5, 2));
    EXPECT_EQ(ReplacementsFor("SampleNarrow-Bold").front(), 5u);
    EXPECT_EQ(ReplacementsFor({"MadeUpName", "Sample", "Light Oblique", "", 0}).front(), 6u);
    EXPECT_EQ(ReplacementsFor({"", "sample", "", "", 0}).front(), 1u);
}

TEST_F(FontStoreTest, ASmartListHoldsTheFontsThatAreInAnyOfItsSources) {
    WorkgroupStore workgroups{mDatabase};
    SetStore sets{mDatabase};
    SmartListStore lists{mDatabase};
    constexpr int32_t kFirst = 1;
    const int32_t second = workgroups.Create("Project", kWorkgroupType_FontLibrary);
    const int32_t set = sets.Create(kFirst, "Poster");
    for (const char* name : {"One", "Two", "Three", "Four"})
        Add(name, name, "Regular");
    for (const auto& [workgroup, font] : {std::pair{kFirst, 1u}, {kFirst, 2u}, {second, 2u}, {second, 3u}})
        workgroups.AddFont(workgroup, font);
    sets.AddFont(set, 4);
    const auto tried = [&](int32_t id, const SmartListQuery& query, uint32_t after = 0, int limit = 100) {
        return IDsOf(mFonts.ListFrom(lists.Resolve(id, query), after, limit));
    };
    const auto fontsOf = [&](int32_t id) { return tried(id, lists.Find(id)->query); };
    EXPECT_EQ(tried(0, {}), (IDs{1, 2, 3, 4}));
    EXPECT_EQ(tried(0, {{kWorkgroupID_All}, {}, {}}), (IDs{1, 2, 3, 4}));
    EXPECT_EQ(tried(0, {{second}, {set}, {}}), (IDs{2, 3, 4}));
    EXPECT_EQ(tried(0, {{second}, {set}, {}}, 2, 1), (IDs{3}));
    // And other lists are followed, but not in circles.
    const int32_t inner = lists.Create("Inner", {{}, {set}, {}});
    const int32_t middle = lists.Create("Middle", {{kFirst}, {}, {inner}});
    const int32_t outer = lists.Create("Outer", {{}, {}, {middle, inner}});
    EXPECT_EQ(fontsOf(outer), (IDs{1, 2, 4}));
    lists.SetQuery(inner, {{second}, {}, {outer, inner}});
    EXPECT_EQ(fontsOf(outer), (IDs{1, 2, 3}));
    EXPECT_EQ(fontsOf(inner), (IDs{1, 2, 3}));
    lists.SetQuery(inner, {{}, {}, {inner}});
    EXPECT_EQ(fontsOf(inner), IDs());
    EXPECT_EQ(tried(inner, {{}, {set}, {middle}}), (IDs{1, 2, 4})) << "as it is tried, in its place";
    // One that loses its last source is empty.
    const int32_t last = lists.Create("List", {{}, {set}, {}});
    lists.SetQuery(outer, {{}, {}, {inner}});
    sets.Delete(set);
    lists.Delete(inner);
    EXPECT_EQ(fontsOf(last), IDs());
    EXPECT_EQ(fontsOf(outer), IDs());
    EXPECT_GT(lists.Create("New", {}), last);
}

TEST(Database, IsAsDurableAsATransactionAsks) {
    const TemporaryFolder folder;
    Database database(folder / "database");
    const auto synchronous = [&] {
        Statement query = database.Prepare("PRAGMA synchronous");
        return query.Step() ? query.Integer(0) : -1;
    };
    for (const auto& [durability, level] :
         {std::pair{Durability::kProcess, 1}, {Durability::kPowerLoss, 2}}) {
        const Transaction transaction(database, durability);
        EXPECT_EQ(synchronous(), level);
    }
}

TEST(Sessions, ALeaseMakesAFontActiveInItsOwnAndTheUserInAll) {
    const TemporaryFolder folder;
    Database one(folder / "database");
    Database other(folder / "database");
    PrepareSchema(one, 1);
    PrepareSchema(other, 2);
    FontStore fonts(one);
    FontStore othersFonts(other);
    const int64_t file = fonts.Add({0, "checksum", "font.ttf", ".ttf", 10}, {FontFace()});
    const uint32_t font = fonts.FontsOfFile(file).front().id;
    using States = std::pair<int32_t, int32_t>;
    const auto states = [&] {
        return States(fonts.Find(font)->activationState, othersFonts.Find(font)->activationState);
    };
    EXPECT_FALSE(other.HasChangedElsewhere());
    ActivationStore(one).AddLease(font, {{10, 20}});
    EXPECT_EQ(states(), States(kFontActivationState_ActivatedByPlugin, kFontActivationState_Inactive));
    EXPECT_TRUE(fonts.IsFileActive(file));
    EXPECT_FALSE(othersFonts.IsFileActive(file));
    EXPECT_EQ(fonts.ActiveFiles().size(), 1u);
    EXPECT_TRUE(othersFonts.ActiveFiles().empty());
    EXPECT_TRUE(ActivationStore(other).Hosts().empty());
    const std::string shared = othersFonts.SharedState();
    ActivationStore(one).AddUserActivation(font);
    EXPECT_EQ(states(), States(kFontActivationState_ActivatedByUser, kFontActivationState_ActivatedByUser));
    EXPECT_TRUE(other.HasChangedElsewhere());
    EXPECT_NE(othersFonts.SharedState(), shared);
    ActivationStore(other).RemoveUserActivation(font);
    EXPECT_FALSE(other.HasChangedElsewhere()) << "that was here";
    EXPECT_EQ(othersFonts.SharedState(), shared) << "a lease is nothing shared";
}

TEST(Schema, UpgradesADatabaseOfTheFirstVersionOrLeavesItAsItWas) {
    Database database(":memory:");
    EXPECT_TRUE(PrepareSchema(database, 0, 1));
    database.Execute(
        "INSERT INTO files VALUES (7, 'checksum', 'font.ttf', '.ttf', 10, 0);"
        "INSERT INTO fonts VALUES (9, 7, 0, 'Sample', 'Sample', 'Regular', 'Sample', '', '1', 4);"
        "INSERT INTO leases VALUES (9, 10, 20, '/document');"
        "INSERT INTO workgroups (name, type) VALUES ('Project', 1);"
        "CREATE TABLE smart_list_members (whose INTEGER)");
    EXPECT_THROW(PrepareSchema(database), DatabaseError);
    database.Execute("DROP TABLE smart_list_members");
    EXPECT_FALSE(PrepareSchema(database));
    EXPECT_FALSE(PrepareSchema(database));
    EXPECT_EQ(ActivationStore(database).FontsLeasedFor({10, 20}, "/document"), IDs{9});
    EXPECT_EQ(WorkgroupStore(database).List().size(), 3u);
    EXPECT_GT(SmartListStore(database).Create("All", {}), 0);
    FontStore(database).RemoveFile(7);
    EXPECT_TRUE(ActivationStore(database).Hosts().empty());
    EXPECT_THROW(PrepareSchema(database, 0, 1), DatabaseError);
}

ErrorCode RefusalOf(Database& database) {
    try {
        PrepareSchema(database);
        return CoreErrorCodes::kSuccess;
    } catch (const DatabaseError& error) {
        return error.Code();
    }
}

TEST(Schema, RefusesADatabaseThatIsNoneOfOursAndLeavesItAsItWas) {
    const auto version = [](int number) { return "PRAGMA user_version = " + std::to_string(number); };
    const std::string notes = "CREATE TABLE notes (text TEXT);";
    constexpr ErrorCode kNewer = CoreErrorCodes::kVersionMismatch;
    constexpr ErrorCode kInvalid = GSqliteDatabase::kInvalidDatabaseFile;
    const std::tuple<bool, std::string, ErrorCode> cases[] = {
        {true, version(kSchemaVersion + 1), kNewer},
        {true, version(-1), kInvalid},
        {true, "DROP TABLE settings", kInvalid},
        {true, "ALTER TABLE leases DROP COLUMN request", kInvalid},
        {false, notes, kInvalid},
        {false, notes + version(3), kInvalid}};
    for (const auto& [isOurs, change, code] : cases) {
        const TemporaryFolder folder;
        const std::string path = folder / "database";
        {
            Database database(path);
            EXPECT_TRUE(!isOurs || PrepareSchema(database));
            database.Execute(change.c_str());
        }
        const std::string before = ContentOf(path);
        {
            Database database(path);
            EXPECT_EQ(RefusalOf(database), code) << change;
        }
        EXPECT_EQ(ContentOf(path), before) << change;
    }
}

}  // namespace
}  // namespace pellwick
