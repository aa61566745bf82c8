// Which fonts documents use, as hosts reported it, and what was chosen for those that they lack.
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
    /// The font that was last chosen for one of that name, which the document lacks; 0 for none.
    uint32_t Choice(const std::string& path, const std::string& name);
    void SetChoice(const std::string& path, const std::string& name, uint32_t fontID);
    /// Forgets the document. False when its fonts were not known.
    bool Clear(const std::string& path);

private:
    Database& mDatabase;
};

}  // namespace pellwick
