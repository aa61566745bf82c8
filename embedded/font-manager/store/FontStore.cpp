#include "store/FontStore.h"

#include <algorithm>
#include <iterator>

#include "FontRecordKeys.h"
#include "common/FontManagerLimits.h"
#include "store/Database.h"
#include "store/SmartListStore.h"

namespace pellwick {
namespace {

// A font is in several workgroups at most for the user; its record names the first.
#define SELECT_FONTS                                                                                        \
    "SELECT f.id, f.face, f.postscript_name, f.family, f.style, f.full_name, f.foundry, f.version, f.kind," \
    " files.id, files.checksum, files.name, files.extension, files.size, files.path,"                       \
    " CASE WHEN files.path <> '' THEN 3 WHEN files.missing THEN 7"                                          \
    "  WHEN EXISTS (SELECT 1 FROM user_activations u WHERE u.font_id = f.id) THEN 1"                        \
    "  WHEN EXISTS (SELECT 1 FROM own_leases l WHERE l.font_id = f.id) THEN 2 ELSE 0 END,"                  \
    " w.id, w.name, w.type, f.preferred, f.glyphs, f.widths"                                                \
    " FROM fonts f JOIN files ON files.id = f.file_id"                                                      \
    " LEFT JOIN workgroups w ON w.id ="                                                                     \
    "  (SELECT MIN(workgroup_id) FROM workgroup_fonts wf WHERE wf.font_id = f.id) "

static_assert(kFontActivationState_Missing == 7 && kFontActivationState_ActivatedByUser == 1 &&
              kFontActivationState_ActivatedByPlugin == 2 && kFontActivationState_SystemFont == 3);

#define SELECT_FILES "SELECT id, checksum, name, extension, size, path, modified FROM files "

#define SELECT_ACTIVE_FILE_IDS                       \
    "SELECT DISTINCT file_id FROM fonts WHERE id IN" \
    " (SELECT font_id FROM user_activations UNION SELECT font_id FROM own_leases)"

#define IS_ACTIVE                                                       \
    "(EXISTS (SELECT 1 FROM user_activations u WHERE u.font_id = f.id)" \
    " OR EXISTS (SELECT 1 FROM own_leases l WHERE l.font_id = f.id))"
#define IS_SYSTEMS "files.path <> ''"

constexpr char kSelectActiveFontOfFile[] =
    "SELECT 1 FROM fonts f WHERE f.file_id = ? AND " IS_ACTIVE " LIMIT 1";

// The ways in which fonts answer to a name, ?1.
constexpr char kByPostScriptName[] = "WHERE f.postscript_name = ?1";
constexpr char kByPostScriptNameInAnyCase[] = "WHERE f.postscript_name = ?1 COLLATE NOCASE";
constexpr char kByFamily[] = "WHERE f.family = ?1";
constexpr char kByFamilyInAnyCase[] = "WHERE f.family = ?1 COLLATE NOCASE";
// An empty name matches nothing.
constexpr char kByLookupName[] =
    "JOIN lookup_names names ON names.font_id = f.id WHERE names.name = ?1 AND ?1 <> ''";

#define IN_WORKGROUP                                                \
    " AND (?2 = 0 OR EXISTS (SELECT 1 FROM workgroup_fonts members" \
    " WHERE members.workgroup_id = ?2 AND members.font_id = f.id))"

Font FontOfRow(const Statement& row) {
    Font font;
    font.id = static_cast<uint32_t>(row.Integer(0));
    font.face = row.Integer(1);
    font.postScriptName = row.Text(2);
    font.family = row.Text(3);
    font.style = row.Text(4);
    font.fullName = row.Text(5);
    font.foundry = row.Text(6);
    font.version = row.Text(7);
    font.kind = static_cast<int32_t>(row.Integer(8));
    font.file = {
        row.Integer(9), row.Text(10), row.Text(11), row.Text(12), static_cast<uint64_t>(row.Integer(13)),
        row.Text(14)};
    font.activationState = static_cast<int32_t>(row.Integer(15));
    font.workgroupID = static_cast<int32_t>(row.Integer(16));
    font.workgroupName = row.Text(17);
    font.workgroupType = static_cast<int32_t>(row.Integer(18));
    font.isPreferred = row.Integer(19) != 0;
    font.glyphs = row.Text(20);
    font.widths = row.Text(21);
    return font;
}

std::vector<Font> AllRows(Statement& statement) {
    std::vector<Font> fonts;
    while (statement.Step())
        fonts.push_back(FontOfRow(statement));
    return fonts;
}

/// As json_each takes it.
std::string JsonArray(const std::vector<int32_t>& numbers) {
    std::string text;
    for (const int32_t number : numbers)
        text += (text.empty() ? "" : ",") + std::to_string(number);
    return "[" + text + "]";
}

FontFile FileOfRow(const Statement& row) {
    return {row.Integer(0), row.Text(1),   row.Text(2), row.Text(3), static_cast<uint64_t>(row.Integer(4)),
            row.Text(5),    row.Integer(6)};
}

std::vector<FontFile> AllFiles(Statement& statement) {
    std::vector<FontFile> files;
    while (statement.Step())
        files.push_back(FileOfRow(statement));
    return files;
}

void AddLookupNames(Database& database, int64_t fontID, const FontFace& face) {
    for (const std::string& name : face.lookupNames)
        database.Prepare("INSERT OR IGNORE INTO lookup_names (name, font_id) VALUES (?, ?)")
            .Bind(SimplifyName(name), fontID)
            .Run();
}

void AddFace(Database& database, int64_t fileID, const FontFace& face) {
    database
        .Prepare(
            "INSERT INTO fonts (file_id, face, postscript_name, family, style, full_name, foundry,"
            " version, kind, glyphs, widths) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .Bind(fileID, face.face, face.postScriptName, face.family, face.style, face.fullName, face.foundry,
              face.version, face.kind, face.glyphs, face.widths)
        .Run();
    AddLookupNames(database, database.LastInsertedID(), face);
}

}  // namespace

std::string SimplifyName(std::string_view name) {
    std::string simple;
    for (const char character : name) {
        if (character >= 'A' && character <= 'Z')
            simple += static_cast<char>(character - 'A' + 'a');
        else if (character != ' ' && character != '-' && character != '_')
            simple += character;
    }
    return simple;
}

std::optional<FontFile> FontStore::FindFile(const std::string& checksum) {
    Statement query = mDatabase.Prepare(SELECT_FILES "WHERE checksum = ? AND path = ''");
    if (!query.Bind(checksum).Step())
        return std::nullopt;
    return FileOfRow(query);
}

int64_t FontStore::Add(const FontFile& file, const std::vector<FontFace>& faces) {
    mDatabase
        .Prepare(
            "INSERT INTO files (checksum, name, extension, size, path, modified) VALUES (?, ?, ?, ?, ?, ?)")
        .Bind(file.checksum, file.name, file.extension, file.size, file.path, file.modified)
        .Run();
    const int64_t fileID = mDatabase.LastInsertedID();
    if (!file.IsSystems())
        ForgetRemovedFile(file.checksum);
    for (const FontFace& face : faces)
        AddFace(mDatabase, fileID, face);
    return fileID;
}

void FontStore::RemoveFile(int64_t fileID) {
    mDatabase.Prepare("INSERT OR IGNORE INTO removed_files SELECT checksum FROM files WHERE id = ?")
        .Bind(fileID)
        .Run();
    mDatabase.Prepare("DELETE FROM files WHERE id = ?").Bind(fileID).Run();
}

void FontStore::ForgetSystemFile(int64_t fileID) {
    mDatabase.Prepare("DELETE FROM files WHERE id = ? AND path <> ''").Bind(fileID).Run();
}

std::vector<std::string> FontStore::RemovedFiles() {
    Statement query = mDatabase.Prepare("SELECT checksum FROM removed_files");
    std::vector<std::string> checksums;
    while (query.Step())
        checksums.push_back(query.Text(0));
    return checksums;
}

bool FontStore::IsRemovedFile(const std::string& checksum) {
    return mDatabase.Prepare("SELECT 1 FROM removed_files WHERE checksum = ?").Bind(checksum).Step();
}

void FontStore::ForgetRemovedFile(const std::string& checksum) {
    mDatabase.Prepare("DELETE FROM removed_files WHERE checksum = ?").Bind(checksum).Run();
}

void FontStore::SetFileMissing(int64_t fileID, bool isMissing) {
    mDatabase.Prepare("UPDATE files SET missing = ? WHERE id = ?").Bind(isMissing, fileID).Run();
}

void FontStore::SetFileName(int64_t fileID, const std::string& name) {
    mDatabase.Prepare("UPDATE files SET name = ? WHERE id = ?").Bind(name, fileID).Run();
}

void FontStore::NoteMissingFiles(const std::vector<FontFile>& files) {
    mDatabase.Execute("UPDATE files SET missing = 0 WHERE missing");
    for (const FontFile& file : files)
        SetFileMissing(file.id, true);
}

std::optional<Font> FontStore::Find(uint32_t fontID) {
    Statement query = mDatabase.Prepare(SELECT_FONTS "WHERE f.id = ?");
    if (!query.Bind(fontID).Step())
        return std::nullopt;
    return FontOfRow(query);
}

std::vector<Font> FontStore::FontsOfFile(int64_t fileID) {
    Statement query = mDatabase.Prepare(SELECT_FONTS "WHERE f.file_id = ? ORDER BY f.id");
    return AllRows(query.Bind(fileID));
}

std::vector<Font> FontStore::FindNamed(const char* clause, std::string_view name, int32_t workgroupID,
                                       int limit) {
    const std::string sql =
        SELECT_FONTS + std::string(clause) + IN_WORKGROUP " AND files.missing = ?3 ORDER BY f.id LIMIT ?4";
    // One after the other: with the missing ones in the order, all fonts of the name would have to be sorted.
    std::vector<Font> fonts = AllRows(mDatabase.Prepare(sql.c_str()).Bind(name, workgroupID, 0, limit));
    const int left = limit - static_cast<int>(fonts.size());
    if (left > 0) {
        auto missing = AllRows(mDatabase.Prepare(sql.c_str()).Bind(name, workgroupID, 1, left));
        std::move(missing.begin(), missing.end(), std::back_inserter(fonts));
    }
    return fonts;
}

bool FontStore::IsAnyNamed(const char* clause, std::string_view name) {
    const std::string sql = "SELECT 1 FROM fonts f " + std::string(clause) + " LIMIT 1";
    return mDatabase.Prepare(sql.c_str()).Bind(name).Step();
}

std::vector<Font> FontStore::FindByPostScriptName(const std::string& name, int32_t workgroupID) {
    const char* clause = IsAnyNamed(kByPostScriptName, name) ? kByPostScriptName : kByPostScriptNameInAnyCase;
    return FindNamed(clause, name, workgroupID, kMaxFontsOfName);
}

std::vector<Font> FontStore::FindByFamily(const std::string& family, int32_t workgroupID) {
    const char* clause = IsAnyNamed(kByFamily, family) ? kByFamily : kByFamilyInAnyCase;
    return FindNamed(clause, family, workgroupID, kListPageSize);
}

std::vector<Font> FontStore::FindByLookupName(const std::string& name) {
    return FindNamed(kByLookupName, SimplifyName(name), kAnyWorkgroup, kMaxFontsOfName);
}

std::vector<Font> FontStore::FindActive(const std::string& postScriptName) {
    Statement query = mDatabase.Prepare(SELECT_FONTS "WHERE f.postscript_name = ? AND (" IS_SYSTEMS
                                                     " OR " IS_ACTIVE ") ORDER BY f.id LIMIT ?");
    return AllRows(query.Bind(postScriptName, kMaxFontsOfName));
}

std::vector<Font> FontStore::ListRivals(const std::string& afterName, int limit) {
    Statement query = mDatabase.Prepare(
        SELECT_FONTS
        "WHERE f.postscript_name IN"
        " (SELECT postscript_name FROM fonts JOIN files ON files.id = file_id WHERE postscript_name > ?"
        " GROUP BY postscript_name HAVING COUNT(DISTINCT checksum) > 1 ORDER BY postscript_name LIMIT ?)"
        " ORDER BY f.postscript_name, f.id");
    return AllRows(query.Bind(afterName, limit));
}

void FontStore::SetPreferred(const Font& font, bool isPreferred) {
    mDatabase.Prepare("UPDATE fonts SET preferred = (id = ? AND ?) WHERE postscript_name = ?")
        .Bind(font.id, isPreferred, font.postScriptName)
        .Run();
}

std::vector<Font> FontStore::ListNamed(const std::string& name, uint32_t after, int limit) {
    for (const char* clause :
         {kByPostScriptName, kByPostScriptNameInAnyCase, kByFamily, kByFamilyInAnyCase}) {
        if (IsAnyNamed(clause, name))
            return ListNamed(clause, name, after, limit);
    }
    return ListNamed(kByLookupName, SimplifyName(name), after, limit);
}

std::vector<Font> FontStore::ListNamed(const char* clause, std::string_view name, uint32_t after, int limit) {
    const std::string sql = SELECT_FONTS + std::string(clause) + " AND f.id > ?2 ORDER BY f.id LIMIT ?3";
    return AllRows(mDatabase.Prepare(sql.c_str()).Bind(name, after, limit));
}

std::vector<Font> FontStore::List(uint32_t after, int limit) {
    Statement query = mDatabase.Prepare(SELECT_FONTS "WHERE f.id > ? ORDER BY f.id LIMIT ?");
    return AllRows(query.Bind(after, limit));
}

std::vector<Font> FontStore::ListOfKind(bool isSystems, uint32_t after, int limit) {
    Statement query =
        mDatabase.Prepare(SELECT_FONTS "WHERE (" IS_SYSTEMS ") = ? AND f.id > ? ORDER BY f.id LIMIT ?");
    return AllRows(query.Bind(isSystems, after, limit));
}

std::vector<Font> FontStore::ListInSet(int32_t setID, uint32_t after, int limit) {
    Statement query = mDatabase.Prepare(SELECT_FONTS
                                        "JOIN set_fonts sf ON sf.font_id = f.id"
                                        " WHERE sf.set_id = ? AND f.id > ? ORDER BY f.id LIMIT ?");
    return AllRows(query.Bind(setID, after, limit));
}

std::vector<Font> FontStore::ListFrom(const FontSources& sources, uint32_t after, int limit) {
    if (sources.isEverything)
        return List(after, limit);
    Statement query = mDatabase.Prepare(
        SELECT_FONTS
        "WHERE f.id IN"
        " (SELECT font_id FROM workgroup_fonts WHERE workgroup_id IN (SELECT value FROM json_each(?))"
        " UNION SELECT font_id FROM set_fonts WHERE set_id IN (SELECT value FROM json_each(?)))"
        " AND f.id > ? ORDER BY f.id LIMIT ?");
    return AllRows(query.Bind(JsonArray(sources.workgroupIDs), JsonArray(sources.setIDs), after, limit));
}

std::vector<FontNames> FontStore::NamesAfter(uint32_t after, int limit) {
    Statement query = mDatabase.Prepare(
        "SELECT id, postscript_name, family, style FROM fonts WHERE id > ? ORDER BY id LIMIT ?");
    query.Bind(after, limit);
    std::vector<FontNames> names;
    while (query.Step())
        names.push_back(
            {static_cast<uint32_t>(query.Integer(0)), query.Text(1), query.Text(2), query.Text(3)});
    return names;
}

int64_t FontStore::Count() {
    Statement query = mDatabase.Prepare("SELECT COUNT(*) FROM fonts");
    return query.Step() ? query.Integer(0) - CountSystemFonts() : 0;
}

int64_t FontStore::CountSystemFonts() {
    Statement query =
        mDatabase.Prepare("SELECT COUNT(*) FROM files JOIN fonts ON file_id = files.id WHERE " IS_SYSTEMS);
    return query.Step() ? query.Integer(0) : 0;
}

int64_t FontStore::CountFiles() {
    Statement query = mDatabase.Prepare("SELECT COUNT(*) FROM files WHERE path = ''");
    return query.Step() ? query.Integer(0) : 0;
}

std::vector<FontFile> FontStore::ActiveFiles() {
    Statement query = mDatabase.Prepare(SELECT_FILES "WHERE id IN (" SELECT_ACTIVE_FILE_IDS ")");
    return AllFiles(query);
}

int64_t FontStore::CountMissingFiles() {
    Statement query = mDatabase.Prepare("SELECT COUNT(*) FROM files WHERE missing = 1");
    return query.Step() ? query.Integer(0) : 0;
}

int64_t FontStore::CountCopiesOfSystemFiles() {
    Statement query = mDatabase.Prepare(
        "SELECT COUNT(DISTINCT vault.id) FROM files AS systems JOIN files AS vault"
        " ON vault.checksum = systems.checksum AND vault.path = '' WHERE systems.path <> ''");
    return query.Step() ? query.Integer(0) : 0;
}

int64_t FontStore::CountActiveFiles() {
    Statement query = mDatabase.Prepare("SELECT COUNT(*) FROM (" SELECT_ACTIVE_FILE_IDS ")");
    return query.Step() ? query.Integer(0) : 0;
}

std::vector<FontFile> FontStore::Files() {
    Statement query = mDatabase.Prepare(SELECT_FILES "WHERE path = ''");
    return AllFiles(query);
}

bool FontStore::IsSystemFileKnown(const std::string& path) {
    return mDatabase.Prepare("SELECT 1 FROM files WHERE path = ? AND path <> ''").Bind(path).Step();
}

std::string FontStore::SharedState() {
    Statement query = mDatabase.Prepare(
        "SELECT (SELECT COUNT(*) || ' ' || IFNULL(MAX(id), 0) FROM fonts)"
        " || ' ' || (SELECT COUNT(*) || ' ' || IFNULL(SUM(font_id), 0) FROM user_activations)"
        " || ' ' || (SELECT COUNT(*) FROM files WHERE missing)"
        " || ' ' || (SELECT COUNT(*) || ' ' || IFNULL(MAX(id), 0) FROM sets)"
        " || ' ' || (SELECT COUNT(*) FROM set_fonts)"
        " || ' ' || (SELECT COUNT(*) || ' ' || IFNULL(MAX(id), 0) FROM smart_lists)"
        " || ' ' || (SELECT COUNT(*) || ' ' || IFNULL(MAX(id), 0) FROM workgroups)");
    return query.Step() ? query.Text(0) : std::string();
}

std::vector<FontFile> FontStore::SystemFiles() {
    Statement query = mDatabase.Prepare(SELECT_FILES "WHERE path <> ''");
    return AllFiles(query);
}

std::vector<FontFile> FontStore::FilesAfter(int64_t after, int limit) {
    Statement query = mDatabase.Prepare(SELECT_FILES "WHERE id > ? AND path = '' ORDER BY id LIMIT ?");
    return AllFiles(query.Bind(after, limit));
}

bool FontStore::IsFileActive(int64_t fileID) {
    return mDatabase.Prepare(kSelectActiveFontOfFile).Bind(fileID).Step();
}

}  // namespace pellwick
