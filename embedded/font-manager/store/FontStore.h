// The fonts that the font manager knows, and the files they came in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellwick {

class Database;
class Statement;
struct FontSources;

/// A file in the vault, or one of the system's, which stays where it is.
struct FontFile {
    int64_t id = 0;
    std::string checksum;   ///< SHA-256, lower-case hexadecimal
    std::string name;       ///< the name under which it was added
    std::string extension;  ///< with its dot, lower case
    uint64_t size = 0;      ///< bytes
    std::string path{};     ///< of the system's: its full path; empty for the vault's
    int64_t modified = 0;   ///< of the system's: seconds since 1970-01-01 UTC

    bool IsSystems() const { return !path.empty(); }
};

/// What a scan finds out about one face of a file.
struct FontFace {
    int64_t face = 0;  ///< FreeType's face index; named instance in bits 16 to 30
    std::string postScriptName;
    std::string family;
    std::string style;
    std::string fullName;
    std::string foundry;
    std::string version;
    int32_t kind = 0;                      ///< a kind of GFontManagerConstants
    std::vector<std::string> lookupNames;  ///< further names that documents may use
    std::string glyphs{};                  ///< as in Fingerprint
    std::string widths{};
};

/// A face in the store.
struct Font : FontFace {
    uint32_t id = 0;
    FontFile file;
    int32_t activationState = 0;  ///< see FontActivationState
    int32_t workgroupID = 0;
    std::string workgroupName;
    int32_t workgroupType = 0;
    bool isPreferred = false;  ///< by the user, to other fonts of its PostScript name
};

/// What a font is called.
struct FontNames {
    uint32_t id = 0;
    std::string postScriptName;
    std::string family;
    std::string style;
};

/// Names that differ in blanks, hyphens, underscores or the case of the letters A to Z are one name.
std::string SimplifyName(std::string_view name);

/// Throws DatabaseError.
class FontStore {
public:
    static constexpr int32_t kAnyWorkgroup = 0;

    explicit FontStore(Database& database) : mDatabase(database) {}

    /// The file of the vault with that checksum.
    std::optional<FontFile> FindFile(const std::string& checksum);
    /// Every file that there should be in the vault.
    std::vector<FontFile> Files();
    /// The system's files, as they were read last; some hold no font that can be used.
    std::vector<FontFile> SystemFiles();
    bool IsSystemFileKnown(const std::string& path);
    /// A text that another one takes the place of when fonts, activations by the user, sets, smart lists or workgroups come
    /// or go. What hosts hold has no part in it.
    std::string SharedState();
    /// Up to `limit` of the vault's with a larger ID than `after`, by ID.
    std::vector<FontFile> FilesAfter(int64_t after, int limit);
    /// Adds a file and its faces; the file's new ID.
    int64_t Add(const FontFile& file, const std::vector<FontFace>& faces);
    /// Removes a file of the vault and all its fonts. It is among RemovedFiles from then on.
    void RemoveFile(int64_t fileID);
    /// Forgets a file of the system's and all its fonts.
    void ForgetSystemFile(int64_t fileID);
    /// The checksums of files that were removed, and may yet stand in the vault.
    std::vector<std::string> RemovedFiles();
    bool IsRemovedFile(const std::string& checksum);
    void ForgetRemovedFile(const std::string& checksum);
    /// Notes that the file cannot be found in the vault, or is there again.
    void SetFileMissing(int64_t fileID, bool isMissing);
    void SetFileName(int64_t fileID, const std::string& name);
    /// Notes that exactly these files cannot be found.
    void NoteMissingFiles(const std::vector<FontFile>& files);

    std::optional<Font> Find(uint32_t fontID);
    std::vector<Font> FontsOfFile(int64_t fileID);
    /// Exact names; when there are none, names that differ in case. With a workgroup those in it alone. Up to
    /// kMaxFontsOfName, of a family kListPageSize: those whose file is not missing first, then by ID.
    std::vector<Font> FindByPostScriptName(const std::string& name, int32_t workgroupID = kAnyWorkgroup);
    std::vector<Font> FindByFamily(const std::string& family, int32_t workgroupID = kAnyWorkgroup);
    /// Fonts that go by a simplified name: family and style together, or the full name. As many, in that
    /// order.
    std::vector<Font> FindByLookupName(const std::string& name);
    /// Active fonts, the system's included, with exactly that PostScript name, up to kMaxFontsOfName, by ID.
    std::vector<Font> FindActive(const std::string& postScriptName);
    /// Fonts with a PostScript name that fonts of other files have, too, unless these are the same bytes: all
    /// of up to `limit` names that come after `afterName`, by name and ID.
    std::vector<Font> ListRivals(const std::string& afterName, int limit);
    /// Prefers the font to others of its name; without `isPreferred` none of them is preferred any more.
    void SetPreferred(const Font& font, bool isPreferred);
    /// What people mean by a name: fonts with that PostScript name, else of that family, else those that go
    /// by it. Up to `limit` with a larger ID than `after`, by ID.
    std::vector<Font> ListNamed(const std::string& name, uint32_t after, int limit);
    /// Up to `limit` fonts with a larger ID than `after`, by ID.
    std::vector<Font> List(uint32_t after, int limit);
    /// The same of the system's fonts, or of the vault's.
    std::vector<Font> ListOfKind(bool isSystems, uint32_t after, int limit);
    /// The same of the fonts that are in a set.
    std::vector<Font> ListInSet(int32_t setID, uint32_t after, int limit);
    /// The same of the fonts that come from any of the sources.
    std::vector<Font> ListFrom(const FontSources& sources, uint32_t after, int limit);
    /// The names of up to `limit` fonts with a larger ID than `after`, by ID.
    std::vector<FontNames> NamesAfter(uint32_t after, int limit);
    /// Those of the vault, and those of the system.
    int64_t Count();
    int64_t CountSystemFonts();
    /// Of the vault.
    int64_t CountFiles();
    /// Files of fonts that are active.
    std::vector<FontFile> ActiveFiles();
    int64_t CountMissingFiles();
    /// Files of the vault of which the system has one of the same bytes.
    int64_t CountCopiesOfSystemFiles();
    int64_t CountActiveFiles();
    bool IsFileActive(int64_t fileID);

private:
    std::vector<Font> FindNamed(const char* clause, std::string_view name, int32_t workgroupID, int limit);
    std::vector<Font> ListNamed(const char* clause, std::string_view name, uint32_t after, int limit);
    bool IsAnyNamed(const char* clause, std::string_view name);

    Database& mDatabase;
};

}  // namespace pellwick
