#include "store/DocumentStore.h"

#include "store/Database.h"

namespace pellwick {

std::optional<std::string> DocumentStore::FontUsage(const std::string& path) {
    Statement query = mDatabase.Prepare("SELECT font_usage FROM documents WHERE path = ?");
    if (!query.Bind(path).Step())
        return std::nullopt;
    return query.Text(0);
}

void DocumentStore::SetFontUsage(const std::string& path, const std::string& fontUsage) {
    mDatabase
        .Prepare(
            "INSERT INTO documents (path, font_usage) VALUES (?, ?)"
            " ON CONFLICT (path) DO UPDATE SET font_usage = excluded.font_usage")
        .Bind(path, fontUsage)
        .Run();
}

void DocumentStore::SaveFonts(const std::string& path, const std::vector<uint32_t>& fontIDs, bool replace) {
    mDatabase.Prepare("INSERT OR IGNORE INTO documents (path, font_usage) VALUES (?, '')").Bind(path).Run();
    if (replace)
        mDatabase.Prepare("DELETE FROM document_fonts WHERE path = ?").Bind(path).Run();
    for (const uint32_t fontID : fontIDs)
        mDatabase.Prepare("INSERT OR IGNORE INTO document_fonts (path, font_id) VALUES (?, ?)")
            .Bind(path, fontID)
            .Run();
}

uint32_t DocumentStore::Choice(const std::string& path, const std::string& name) {
    Statement query = mDatabase.Prepare("SELECT font_id FROM choices WHERE path = ? AND name = ?");
    return query.Bind(path, name).Step() ? static_cast<uint32_t>(query.Integer(0)) : 0;
}

void DocumentStore::SetChoice(const std::string& path, const std::string& name, uint32_t fontID) {
    mDatabase.Prepare("INSERT OR REPLACE INTO choices (path, name, font_id) VALUES (?, ?, ?)")
        .Bind(path, name, fontID)
        .Run();
}

bool DocumentStore::Clear(const std::string& path) {
    mDatabase.Prepare("DELETE FROM choices WHERE path = ?").Bind(path).Run();
    mDatabase.Prepare("DELETE FROM documents WHERE path = ?").Bind(path).Run();
    return mDatabase.ChangedRows() > 0;
}

}  // namespace pellwick
