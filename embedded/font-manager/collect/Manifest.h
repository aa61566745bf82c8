// What stands in a folder of collected fonts: fonts.json for programs, fonts.html for people. docs/collecting.md
// describes both.
#pragma once

#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "ipc/Message.h"
#include "platform/SystemError.h"

namespace pellwick {

namespace manifest {
// Of the manifest.
inline constexpr char kFormat[] = "format";
inline constexpr char kVersion[] = "version";
inline constexpr char kFonts[] = "fonts";
inline constexpr char kMissing[] = "missing";
// Of a font; a missing one has the first and the last.
inline constexpr char kPostScriptName[] = "postScriptName";
inline constexpr char kFamily[] = "family";
inline constexpr char kStyle[] = "style";
inline constexpr char kFontVersion[] = "version";
inline constexpr char kFile[] = "file";  ///< of the copy; null where there is none
inline constexpr char kProblem[] = "problem";
inline constexpr char kSize[] = "size";
inline constexpr char kSHA256[] = "sha256";
inline constexpr char kRights[] = "rights";
inline constexpr char kEmbedding[] = "embedding";
inline constexpr char kLicence[] = "licence";
inline constexpr char kLicenceURL[] = "licenceURL";
inline constexpr char kLicenceFiles[] = "licenceFiles";
inline constexpr char kSource[] = "source";
inline constexpr char kUsedIn[] = "usedIn";
// Of a use.
inline constexpr char kDocument[] = "document";
inline constexpr char kWhere[] = "where";
}  // namespace manifest

/// A use of a font: by which document, and where in it for people. Null where neither is known.
Json FontUse(const std::string& document, const std::string& where);

/// The uses and those of `more`; where both speak of a document the latter counts.
Json MergedUses(const Json& uses, const Json& more);

/// One thread.
class Manifest {
public:
    /// Goes on with the manifest that stands in the folder. A file of its name that is something else stays,
    /// and this manifest gets a number.
    explicit Manifest(const std::string& folder);

    /// Adds a font, or replaces what is said of the same font: but for its uses, and for a copy that an
    /// earlier time has left where there is none now.
    void Add(Json font);
    /// Notes exactly these fonts, objects with names and uses, as missing for the document.
    void SetMissing(const std::string& document, const Json& fonts);
    /// Writes both files for everybody whom the user lets read new files; each is whole, or as it was. What it
    /// says of copies that are gone from the folder is left out.
    [[nodiscard]] platform::SystemError Save();

    /// Of the file for programs.
    const std::string& Path() const { return mPath; }

private:
    bool Load();
    bool HasCopy(const Json& font) const;
    void Tidy();
    void NotePositions();

    const std::string mFolder;
    std::string mPath;
    std::string mPagePath;
    Json mContent;
    std::map<std::array<std::string, 3>, size_t> mPositions;  ///< of the fonts, by what tells them apart
};

}  // namespace pellwick
