#include "store/Schema.h"

#include <string>

#include "common/Protocol.h"
#include "store/Database.h"

namespace pellwick {
namespace {

// A kept write-ahead log survives the death of the process; only with the machine can the last commands go.
constexpr char kSettings[] = R"sql(
PRAGMA journal_mode = WAL;
PRAGMA synchronous = NORMAL;
PRAGMA foreign_keys = ON;
)sql";

constexpr char kTables[] = R"sql(
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

void MakeTables(Database& database) {
    database.Execute(kTables);
    auto addWorkgroup = "INSERT INTO workgroups (name, type) VALUES (?, ?)";
    // The name is a mark that those who show it replace by a word of the user's language.
    database.Prepare(addWorkgroup).Bind("Font Library (LOCALIZE ME)", int{kWorkgroupType_FontLibrary}).Run();
    database.Prepare(addWorkgroup).Bind("System Fonts", int{kWorkgroupType_System}).Run();
    database.Execute(("PRAGMA user_version = " + std::to_string(kSchemaVersion)).c_str());
}

int64_t SchemaVersionOf(Database& database) {
    Statement version = database.Prepare("PRAGMA user_version");
    return version.Step() ? version.Integer(0) : 0;
}

}  // namespace

bool PrepareSchema(Database& database) {
    database.Execute(kSettings);
    const int64_t version = SchemaVersionOf(database);
    if (version == kSchemaVersion)
        return false;
    if (version != 0)
        throw DatabaseError(CoreErrorCodes::kVersionMismatch,
                            "the font database was made by a newer version of Pellwick");
    Transaction transaction(database);
    MakeTables(database);
    transaction.Commit();
    return true;
}

}  // namespace pellwick
