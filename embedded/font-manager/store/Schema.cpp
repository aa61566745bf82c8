#include "store/Schema.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

#include "common/Protocol.h"
#include "store/Database.h"

namespace pellwick {
namespace {

constexpr char kSettings[] = R"sql(
PRAGMA journal_mode = WAL;
PRAGMA synchronous = FULL;
)sql";

// The layouts in the order of their versions, each as the steps from the one before it. What a version has
// once been released with stays as it is: databases of it are out there.
constexpr char kVersion1[] = R"sql(
CREATE TABLE files (
    id INTEGER PRIMARY KEY,
    checksum TEXT NOT NULL UNIQUE,
    name TEXT NOT NULL,               -- the name under which it was added
    extension TEXT NOT NULL,          -- with its dot, lower case
    size INTEGER NOT NULL,
    missing INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE fonts (
    id INTEGER PRIMARY KEY AUTOINCREMENT,  -- hosts keep these numbers, none is given twice
    file_id INTEGER NOT NULL REFERENCES files ON DELETE CASCADE,
    face INTEGER NOT NULL,
    postscript_name TEXT NOT NULL,
    family TEXT NOT NULL,
    style TEXT NOT NULL,
    full_name TEXT NOT NULL,
    foundry TEXT NOT NULL,
    version TEXT NOT NULL,
    kind INTEGER NOT NULL,
    UNIQUE (file_id, face)
);
CREATE INDEX fonts_by_postscript_name ON fonts (postscript_name);
CREATE INDEX fonts_by_postscript_name_in_any_case ON fonts (postscript_name COLLATE NOCASE);
CREATE INDEX fonts_by_family ON fonts (family);
CREATE INDEX fonts_by_family_in_any_case ON fonts (family COLLATE NOCASE);
CREATE TABLE lookup_names (
    name TEXT NOT NULL,               -- as SimplifyName makes it
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    PRIMARY KEY (name, font_id)
) WITHOUT ROWID;
CREATE INDEX lookup_names_by_font ON lookup_names (font_id);
CREATE TABLE workgroups (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE,
    type INTEGER NOT NULL
);
CREATE TABLE workgroup_fonts (
    workgroup_id INTEGER NOT NULL REFERENCES workgroups ON DELETE CASCADE,
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    PRIMARY KEY (font_id, workgroup_id)
) WITHOUT ROWID;
CREATE INDEX workgroup_fonts_by_workgroup ON workgroup_fonts (workgroup_id);
CREATE TABLE sets (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    workgroup_id INTEGER NOT NULL REFERENCES workgroups ON DELETE CASCADE,
    name TEXT NOT NULL
);
CREATE TABLE set_fonts (
    set_id INTEGER NOT NULL REFERENCES sets ON DELETE CASCADE,
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    PRIMARY KEY (set_id, font_id)
) WITHOUT ROWID;
CREATE INDEX set_fonts_by_font ON set_fonts (font_id);
CREATE TABLE smart_lists (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    query TEXT NOT NULL
);
CREATE TABLE user_activations (
    font_id INTEGER PRIMARY KEY REFERENCES fonts ON DELETE CASCADE
);
CREATE TABLE leases (
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    process INTEGER NOT NULL,
    start_time INTEGER NOT NULL,
    document TEXT NOT NULL,
    PRIMARY KEY (font_id, process, start_time, document)
) WITHOUT ROWID;
CREATE INDEX leases_by_host ON leases (process, start_time);
CREATE TABLE documents (
    path TEXT PRIMARY KEY,
    font_usage TEXT NOT NULL
) WITHOUT ROWID;
CREATE TABLE document_fonts (
    path TEXT NOT NULL REFERENCES documents ON DELETE CASCADE,
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    PRIMARY KEY (path, font_id)
) WITHOUT ROWID;
CREATE INDEX document_fonts_by_font ON document_fonts (font_id);
CREATE TABLE settings (
    name TEXT PRIMARY KEY,
    value TEXT NOT NULL
) WITHOUT ROWID;
)sql";

// No smart list was ever made in version 1. A lease now has a purpose (LeasePurpose), which is part of its
// key.
constexpr char kVersion2[] = R"sql(
DROP TABLE smart_lists;
CREATE TABLE smart_lists (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE
);
CREATE TABLE smart_list_members (
    smart_list_id INTEGER NOT NULL REFERENCES smart_lists ON DELETE CASCADE,
    kind INTEGER NOT NULL,            -- see MemberKind
    member_id INTEGER NOT NULL,       -- perhaps of what has been deleted since
    PRIMARY KEY (smart_list_id, kind, member_id)
) WITHOUT ROWID;
ALTER TABLE leases RENAME TO leases_of_version_1;
CREATE TABLE leases (
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    process INTEGER NOT NULL,
    start_time INTEGER NOT NULL,
    purpose INTEGER NOT NULL,
    document TEXT NOT NULL,
    PRIMARY KEY (font_id, process, start_time, purpose, document)
) WITHOUT ROWID;
INSERT INTO leases SELECT font_id, process, start_time, 0, document FROM leases_of_version_1;
DROP TABLE leases_of_version_1;
CREATE INDEX leases_by_host ON leases (process, start_time);
)sql";

// A lease names the request that took it, and what a host's last request came to is kept for as long as the
// host may ask again.
constexpr char kVersion3[] = R"sql(
ALTER TABLE leases ADD COLUMN request INTEGER NOT NULL DEFAULT 0;
CREATE TABLE answers (
    process INTEGER NOT NULL,
    start_time INTEGER NOT NULL,
    request INTEGER NOT NULL,
    answer TEXT NOT NULL,             -- JSON
    PRIMARY KEY (process, start_time)
) WITHOUT ROWID;
)sql";

// Files whose records are gone, and that may yet stand in the vault: others that stand there without a record
// are taken back.
constexpr char kVersion4[] = R"sql(
CREATE TABLE removed_files (
    checksum TEXT PRIMARY KEY
) WITHOUT ROWID;
)sql";

// Files of the system's fonts stand beside those of the vault. The checksums of the vault alone are different
// from one another, so the table is made anew. Of fonts of one name the user may prefer one.
constexpr char kVersion5[] = R"sql(
CREATE TABLE files_of_version_5 (
    id INTEGER PRIMARY KEY,
    checksum TEXT NOT NULL,
    name TEXT NOT NULL,               -- the name under which it was added
    extension TEXT NOT NULL,          -- with its dot, lower case
    size INTEGER NOT NULL,
    missing INTEGER NOT NULL DEFAULT 0,
    path TEXT NOT NULL DEFAULT '',    -- where the system has it; empty for a file of the vault
    modified INTEGER NOT NULL DEFAULT 0  -- when the system's was, in seconds since 1970
);
INSERT INTO files_of_version_5 (id, checksum, name, extension, size, missing)
    SELECT id, checksum, name, extension, size, missing FROM files;
DROP TABLE files;
ALTER TABLE files_of_version_5 RENAME TO files;
CREATE UNIQUE INDEX files_of_vault ON files (checksum) WHERE path = '';
CREATE UNIQUE INDEX files_of_system ON files (path) WHERE path <> '';
ALTER TABLE fonts ADD COLUMN preferred INTEGER NOT NULL DEFAULT 0;  -- by the user, to others of its name
)sql";

// What the user chose for the fonts that a document lacks, and the fingerprints of fonts; those from before have none.
constexpr char kVersion6[] = R"sql(
CREATE TABLE choices (
    path TEXT NOT NULL,
    name TEXT NOT NULL,               -- as the document has it
    font_id INTEGER NOT NULL REFERENCES fonts ON DELETE CASCADE,
    PRIMARY KEY (path, name)
) WITHOUT ROWID;
CREATE INDEX choices_by_font ON choices (font_id);
ALTER TABLE fonts ADD COLUMN glyphs TEXT NOT NULL DEFAULT '';
ALTER TABLE fonts ADD COLUMN widths TEXT NOT NULL DEFAULT '';
)sql";

// A lease makes a font active in the session of its host.
constexpr char kVersion7[] = R"sql(
ALTER TABLE leases ADD COLUMN session INTEGER NOT NULL DEFAULT 0;
)sql";

constexpr std::array<const char*, kSchemaVersion> kVersions = {kVersion1, kVersion2, kVersion3, kVersion4,
                                                               kVersion5, kVersion6, kVersion7};

// This connection's session, and the leases that make fonts active there.
constexpr char kOwnSession[] = R"sql(
DROP VIEW IF EXISTS temp.own_leases;
DROP TABLE IF EXISTS temp.own_session;
CREATE TEMP TABLE own_session (number INTEGER);
CREATE TEMP VIEW own_leases AS
    SELECT * FROM leases WHERE session = (SELECT number FROM own_session);
)sql";

void AddFirstWorkgroups(Database& database) {
    auto addWorkgroup = "INSERT INTO workgroups (name, type) VALUES (?, ?)";
    // The name is a mark that those who show it replace by a word of the user's language.
    database.Prepare(addWorkgroup).Bind(WORKGROUP_NAME_FONT_LIBRARY, int{kWorkgroupType_FontLibrary}).Run();
    database.Prepare(addWorkgroup).Bind("System Fonts", int{kWorkgroupType_System}).Run();
}

void Upgrade(Database& database, int64_t version, int target) {
    for (; version < target; ++version)
        database.Execute(kVersions[static_cast<size_t>(version)]);
    database.Execute(("PRAGMA user_version = " + std::to_string(target)).c_str());
}

int64_t SchemaVersionOf(Database& database) {
    Statement version = database.Prepare("PRAGMA user_version");
    return version.Step() ? version.Integer(0) : 0;
}

/// Its tables and their columns.
std::set<std::string> LayoutOf(Database& database) {
    Statement query = database.Prepare(
        "SELECT tables.name || '.' || columns.name FROM sqlite_master AS tables,"
        " pragma_table_info(tables.name) AS columns WHERE tables.type = 'table'");
    std::set<std::string> layout;
    while (query.Step())
        layout.insert(query.Text(0));
    return layout;
}

/// Databases of other programs are left alone, down to their settings.
void RefuseForeign(Database& database, int64_t version, int target) {
    if (version > target)
        throw DatabaseError(CoreErrorCodes::kVersionMismatch,
                            "the font database was made by a newer version of Pellwick");
    const std::set<std::string> found = LayoutOf(database);
    std::set<std::string> expected;
    if (version > 0) {
        Database fresh(":memory:");
        Upgrade(fresh, 0, static_cast<int>(version));
        expected = LayoutOf(fresh);
    }
    const bool isOurs = version == 0 ? found.empty()
                                     : version > 0 && std::includes(found.begin(), found.end(),
                                                                    expected.begin(), expected.end());
    if (!isOurs)
        throw DatabaseError(GSqliteDatabase::kInvalidDatabaseFile,
                            "this is not a database of Pellwick's, or a damaged one");
}

}  // namespace

bool PrepareSchema(Database& database, uint32_t session, int target) {
    const int64_t version = SchemaVersionOf(database);
    RefuseForeign(database, version, target);
    database.Execute(kSettings);
    if (version != target) {
        // A table may give its place to another one: what refers to it is to stay.
        database.Execute("PRAGMA foreign_keys = OFF");
        Transaction transaction(database);
        Upgrade(database, version, target);
        if (version == 0)
            AddFirstWorkgroups(database);
        transaction.Commit();
    }
    database.Execute("PRAGMA foreign_keys = ON");
    if (target != kSchemaVersion)
        return version == 0;
    database.Execute(kOwnSession);
    database.Prepare("INSERT INTO own_session VALUES (?)").Bind(session).Run();
    return version == 0;
}

}  // namespace pellwick
