#include "store/FontStore.h"

#include <gtest/gtest.h>

#include <climits>

#include "FontRecordKeys.h"
#include "TemporaryFolder.h"
#include "activation/FontMatcher.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "store/ActivationStore.h"
#include "store/Database.h"
#include "store/DocumentStore.h"
#include "store/Schema.h"
#include "store/SetStore.h"
#include "store/SmartListStore.h"
#include "store/WorkgroupStore.h"

namespace pellwick {
namespace {

class FontStoreTest : public testing::Test {
protected:
    FontStoreTest() { PrepareSchema(mDatabase); }

    uint32_t Add(const std::string& postScriptName, const std::string& family, const std::string& style,
                 const std::string& version = "Version 1.0", int32_t kind = 4) {
        FontFace face;
        face.postScriptName = postScriptName;
        face.family = family;
        face.style = style;
        face.fullName = family + " " + style;
        face.version = version;
        face.kind = kind;
        face.lookupNames = {family + style, face.fullName};
        const int64_t file =
            mFonts.Add({0, "checksum" + std::to_string(++mFiles), "font.ttf", ".ttf", 10}, {face});
        return mFonts.FontsOfFile(file).front().id;
    }

    std::string MatchOf(const RequestedFont& request) {
        std::string ids;
        std::vector<Font> fonts = MatchFonts(mFonts, request);
        const uint32_t best = fonts.empty() ? 0 : fonts[IndexOfBestMatch(fonts, request)].id;
        SortByMatch(fonts, request);
        EXPECT_EQ(fonts.empty() ? 0 : fonts.front().id, best);
        for (const Font& font : fonts)
            ids += (ids.empty() ? "" : " ") + std::to_string(font.id);
        return ids;
    }

    Database mDatabase{":memory:"};
    FontStore mFonts{mDatabase};
    int mFiles = 0;
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
    const struct {
        RequestedFont request;
        const char* found;
    } cases[] = {{{"Sample-Bold", "", "", "", 0}, "2"},  // exactly, before in any case
                 {{"sample-bold", "", "", "", 0}, "1"},
                 {{"SAMPLE-BOLD", "", "", "", 0}, "1 2"},
                 {{"Sample", "", "", "", 0}, ""},
                 {{"Sample Sans Bold", "", "", "", 0}, "3"},
                 {{"Sample Sans-Bold", "", "", "", 0}, "3"},
                 {{"SampleSans-Bold", "", "", "", 0}, "3"},
                 {{"", "Sample Sans", "Bold", "", 0}, "3"},
                 {{"", "Sample Sans", "", "", 0}, "4"},  // a family alone means its regular style
                 {{"Unknown-Bold", "Sample Sans", "Bold", "", 0}, "3"},
                 {{"", "Sample Sans", "Italic", "", 0}, ""},
                 {{"Many", "", "", "", 4}, "6 5 8 7"},
                 {{"Many", "", "", "", 5}, "7 6 5 8"},
                 {{"_", "", "", "", 0}, ""}};  // nothing goes by an empty name
    for (const auto& [request, found] : cases)
        EXPECT_EQ(MatchOf(request), found) << request.postScriptName << request.family << request.style;
    EXPECT_TRUE(mFonts.ListNamed("", 0, kListPageSize).empty());
    mFonts.SetFileMissing(mFonts.Find(6)->file.id, true);
    EXPECT_EQ(MatchOf({"Many", "", "", "", 4}).substr(0, 1), "5");
}

TEST_F(FontStoreTest, RemovingAFileTakesAllThatHangsOnItAndNeverGivesAnIDTwice) {
    ActivationStore activations(mDatabase);
    const uint32_t font = Add("Sample", "Sample", "Regular");
    activations.AddUserActivation(font);
    mFonts.RemoveFile(mFonts.Find(font)->file.id);
    EXPECT_FALSE(mFonts.Find(font));
    EXPECT_TRUE(mFonts.ActiveFiles().empty());
    EXPECT_EQ(MatchOf({"Sample Regular", "", "", "", 0}), "");
    EXPECT_GT(Add("Sample", "Sample", "Regular"), font);
}

// A collection may hold so many faces of one name that comparing each with each would never end.
TEST_F(FontStoreTest, ANameAnswersForAFewOfItsFonts) {
    constexpr size_t kFaces = 50000;
    FontFace face;
    face.postScriptName = "Many";
    face.family = "Many";
    face.style = "Regular";
    face.lookupNames = {"ManyRegular"};
    int64_t missing = 0;
    {
        Transaction transaction(mDatabase);
        missing = mFonts.Add({0, "missing", "many.ttc", ".ttc", 10}, {face});
        mFonts.SetFileMissing(missing, true);
        std::vector<FontFace> faces(kFaces, face);
        for (size_t index = 0; index < faces.size(); ++index)
            faces[index].face = static_cast<int64_t>(index);
        mFonts.Add({0, "present", "many.ttc", ".ttc", 10}, faces);
        transaction.Commit();
    }
    const uint32_t first = mFonts.FontsOfFile(missing).front().id;
    const RequestedFont byName{"Many", "", "", "", 0};
    for (const std::vector<Font>& fonts : {MatchFonts(mFonts, byName), mFonts.FindByPostScriptName("many"),
                                           mFonts.FindByLookupName("Many Regular")}) {
        ASSERT_EQ(fonts.size(), size_t{kMaxFontsOfName});
        EXPECT_EQ(fonts.front().id, first + 1) << "the missing one comes last";
        EXPECT_EQ(fonts.back().id, first + kMaxFontsOfName);
    }
    EXPECT_EQ(MatchFonts(mFonts, {"", "Many", "", "", 0}).size(), size_t{kMaxFontsOfName});
    EXPECT_EQ(mFonts.FindByFamily("Many").size(), size_t{kListPageSize});
    EXPECT_EQ(mFonts.ListNames().size(), 1u);
    // People mean them all.
    const std::vector<Font> page = mFonts.ListNamed("Many", 0, kListPageSize);
    ASSERT_EQ(page.size(), size_t{kListPageSize});
    EXPECT_EQ(page.front().id, first);
    EXPECT_EQ(mFonts.ListNamed("Many", page.back().id, kListPageSize).front().id, page.back().id + 1);
    EXPECT_TRUE(mFonts.ListNamed("many", first + kFaces, kListPageSize).empty());
    // Those that are active are found wherever they stand.
    ActivationStore(mDatabase).AddUserActivation(first + 4000);
    ASSERT_EQ(mFonts.FindActive("Many").size(), 1u);
    EXPECT_EQ(mFonts.FindActive("Many").front().id, first + 4000);
}

TEST_F(FontStoreTest, KeepsWhichFontsADocumentUsesUntilItIsCleared) {
    DocumentStore documents(mDatabase);
    const uint32_t first = Add("First", "First", "Regular");
    const uint32_t second = Add("Second", "Second", "Regular");
    const auto recorded = [&] {
        Statement query = mDatabase.Prepare("SELECT SUM(font_id) FROM document_fonts");
        return query.Step() ? query.Integer(0) : -1;
    };
    documents.SaveFonts("/document", {first}, false);
    documents.SaveFonts("/document", {first, second}, false);
    EXPECT_EQ(recorded(), first + second);
    documents.SaveFonts("/document", {second}, true);
    EXPECT_EQ(recorded(), second);
    EXPECT_TRUE(documents.Clear("/document"));
    EXPECT_EQ(recorded(), 0);
}

TEST(Database, IsAsDurableAsATransactionAsks) {
    const TemporaryFolder folder;
    Database database(folder / "database");
    PrepareSchema(database);
    const auto synchronous = [&] {
        Statement query = database.Prepare("PRAGMA synchronous");
        return query.Step() ? query.Integer(0) : -1;
    };
    constexpr int64_t kNormal = 1;
    constexpr int64_t kFull = 2;
    {
        Transaction transaction(database, Durability::kProcess);
        EXPECT_EQ(synchronous(), kNormal);
    }
    EXPECT_EQ(synchronous(), kFull);
    Transaction transaction(database);
    EXPECT_EQ(synchronous(), kFull);
}

TEST(Schema, UpgradesADatabaseOfTheFirstVersion) {
    Database database(":memory:");
    EXPECT_TRUE(PrepareSchema(database, 1));
    database.Execute(
        "INSERT INTO files VALUES (7, 'checksum', 'font.ttf', '.ttf', 10, 0);"
        "INSERT INTO fonts VALUES (9, 7, 0, 'Sample', 'Sample', 'Regular', 'Sample', '', '1', 4);"
        "INSERT INTO leases VALUES (9, 10, 20, '/document');"
        "INSERT INTO workgroups (name, type) VALUES ('Project', 1)");
    EXPECT_FALSE(PrepareSchema(database));
    EXPECT_FALSE(PrepareSchema(database));
    EXPECT_EQ(ActivationStore(database).FontsLeasedFor({10, 20}, "/document"), std::vector{uint32_t{9}});
    EXPECT_EQ(WorkgroupStore(database).List().size(), 3u);
    EXPECT_GT(SmartListStore(database).Create("All", {}), 0);
    FontStore(database).RemoveFile(7);
    EXPECT_TRUE(ActivationStore(database).Hosts().empty());
    EXPECT_THROW(PrepareSchema(database, 1), DatabaseError);
}

TEST(Schema, LeavesADatabaseThatCannotBeUpgradedAsItWas) {
    Database database(":memory:");
    PrepareSchema(database, 1);
    database.Execute("CREATE TABLE smart_list_members (whose INTEGER)");
    EXPECT_THROW(PrepareSchema(database), DatabaseError);
    database.Execute("DROP TABLE smart_list_members; INSERT INTO smart_lists (name, query) VALUES ('', '')");
    EXPECT_FALSE(PrepareSchema(database));
    EXPECT_TRUE(SmartListStore(database).List().empty());
}

/// The code with which it is refused; 0 when it is not.
ErrorCode RefusalOf(Database& database) {
    try {
        PrepareSchema(database);
        return CoreErrorCodes::kSuccess;
    } catch (const DatabaseError& error) {
        return error.Code();
    }
}

TEST(Schema, RefusesADatabaseWhoseVersionIsNoneOfOurs) {
    for (const auto& [version, code] :
         std::vector<std::pair<int, ErrorCode>>{{kSchemaVersion + 1, CoreErrorCodes::kVersionMismatch},
                                                {INT_MAX, CoreErrorCodes::kVersionMismatch},
                                                {-1, GSqliteDatabase::kInvalidDatabaseFile},
                                                {-1000, GSqliteDatabase::kInvalidDatabaseFile},
                                                {INT_MIN, GSqliteDatabase::kInvalidDatabaseFile}}) {
        Database database(":memory:");
        PrepareSchema(database);
        database.Execute(("PRAGMA user_version = " + std::to_string(version)).c_str());
        EXPECT_EQ(RefusalOf(database), code) << version;
    }
}

TEST(Schema, LeavesTheDatabaseOfAnotherProgramAsItWas) {
    const TemporaryFolder folder;
    const auto contentOf = [](const std::string& path) {
        std::string content;
        EXPECT_FALSE(platform::ReadWholeFile(path, content, 1 << 20));
        return content;
    };
    for (const char* change :
         {"CREATE TABLE notes (text TEXT)", "CREATE TABLE notes (text TEXT); PRAGMA user_version = 1",
          "CREATE TABLE notes (text TEXT); PRAGMA user_version = 3"}) {
        const std::string path = folder / "notes";
        platform::RemoveFile(path);
        Database(path).Execute(change);
        const std::string before = contentOf(path);
        {
            Database database(path);
            EXPECT_EQ(RefusalOf(database), GSqliteDatabase::kInvalidDatabaseFile) << change;
        }
        EXPECT_EQ(contentOf(path), before) << change;
    }
    for (const char* loss :
         {"DROP TABLE settings", "ALTER TABLE leases DROP COLUMN request", "DROP TABLE document_fonts"}) {
        Database database(":memory:");
        PrepareSchema(database);
        database.Execute(loss);
        EXPECT_EQ(RefusalOf(database), GSqliteDatabase::kInvalidDatabaseFile) << loss;
    }
}

TEST(Schema, AFileThatIsCutAnywhereIsRefusedOrNewAndNeverMore) {
    const TemporaryFolder folder;
    const std::string path = folder / "whole";
    {
        Database database(path);
        PrepareSchema(database);
    }
    std::string whole;
    ASSERT_FALSE(platform::ReadWholeFile(path, whole, 1 << 24));
    constexpr size_t kPage = 4096;  // of the last one SQLite misses nothing before it is used
    for (size_t size = 0; size <= whole.size() - kPage; size += size < 200 ? 7 : 1111) {
        const std::string cut = folder.Write("cut", std::string_view(whole).substr(0, size));
        {
            Database database(cut);
            EXPECT_EQ(RefusalOf(database) == 0, size == 0) << size;
        }
        for (const char* file : {"cut-wal", "cut-shm"})
            platform::RemoveFile(folder / file);
    }
}

}  // namespace
}  // namespace pellwick
