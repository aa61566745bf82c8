// Looks into font files with FreeType (https://freetype.org/freetype2/docs/reference/).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "store/FontStore.h"

struct FT_LibraryRec_;

namespace pellwick {

/// The reason given for what looks like a font but cannot be read.
inline constexpr char kReason_Damaged[] = "damaged font file";

/// One thread.
class FontScanner {
public:
    FontScanner();
    ~FontScanner();
    FontScanner(const FontScanner&) = delete;
    FontScanner& operator=(const FontScanner&) = delete;

    /// The faces in a font file's content: each member of a collection, each named instance of a variable
    /// font. Empty when it is no font that can be used; `reason` then says why, for people. Any bytes are
    /// safe.
    std::vector<FontFace> Scan(const std::string& content, std::string& reason);

private:
    struct Closer {
        void operator()(FT_LibraryRec_* library) const;
    };
    std::unique_ptr<FT_LibraryRec_, Closer> mLibrary;
};

/// What the file of such a font is called: the extension of `fileName` when it is one that font files have,
/// else ".ttf" and so on by the faces. With its dot, lower case.
std::string FontFileExtension(const std::string& fileName, const std::vector<FontFace>& faces);

}  // namespace pellwick
