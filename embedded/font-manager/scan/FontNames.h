// The name table of a font: https://learn.microsoft.com/typography/opentype/spec/name
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <map>
#include <string>
#include <vector>

namespace pellwick {

/// Identifiers of the names that are of use here.
enum NameIdentifier : unsigned {
    kName_Family = 1,
    kName_Style = 2,
    kName_Full = 4,
    kName_Version = 5,
    kName_PostScript = 6,
    kName_Licence = 13,
    kName_LicenceURL = 14,
    kName_TypographicFamily = 16,
    kName_TypographicStyle = 17
};

/// The names of a face, found in one pass over a table that may be made to be slow.
class NameTable {
public:
    /// `budget`: bytes of names that may yet be looked at, for all faces of a file; what is looked at is
    /// taken off. Names beyond it are left out. `face` must outlive this object.
    NameTable(FT_Face face, size_t& budget);

    /// The name in UTF-8, English if it can be had; empty when the face has none that can be decoded.
    std::string Find(unsigned nameIdentifier) const;
    /// The same of a text with lines, which become one, of at most `limit` bytes.
    std::string FindText(unsigned nameIdentifier, size_t limit) const;

private:
    struct Candidate {
        int preference;  ///< higher is better
        unsigned index;  ///< of the record
    };

    /// The best that something is left of once it is clean.
    template <class Clean>
    std::string FindBest(unsigned nameIdentifier, size_t limit, const Clean& clean) const;

    FT_Face mFace;
    std::map<unsigned, std::vector<Candidate>> mCandidates;  ///< by name identifier, best first
};

}  // namespace pellwick
