// Which fonts documents use, as hosts reported it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pellwick {

class Database;

/// Throws DatabaseError.
class DocumentStore {
public:
    explicit DocumentStore(Database& database) : mDatabase(database) {}

    /// The host's text about the document's fonts; nothing for an unknown document.
    std::optional<std::string> FontUsage(const std::string& path);
    void SetFontUsage(const std::string& path, const std::string& fontUsage);
    /// Adds to the document's fonts, or with `replace` puts these in their place.
    void SaveFonts(const std::string& path, const std::vector<uint32_t>& fontIDs, bool replace);
    /// Forgets the document. False when it was not known.
    bool Clear(const std::string& path);

private:
    Database& mDatabase;
};

}  // namespace pellwick
