// Looks into font files with FreeType (https://freetype.org/freetype2/docs/reference/).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "scan/FontLicence.h"
#include "store/FontStore.h"

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace pellwick {

/// One thread.
class FontScanner {
public:
    FontScanner();
    ~FontScanner();
    FontScanner(const FontScanner&) = delete;
    FontScanner& operator=(const FontScanner&) = delete;

    /// The faces in a font file's content: each member of a collection, each named instance of a variable
    /// font. Empty when it is not a font that can be used; `reason` then says why, for people. Any bytes are
    /// safe.
    std::vector<FontFace> Scan(std::string_view content, std::string& reason);

    /// What that face says of its rights, by its index as in FontFace. Nothing of a font that cannot be read.
    FontLicence ReadLicence(std::string_view content, int64_t face);

private:
    void AddInstances(FT_FaceRec_* face, const class NameTable& names, long index,
                      std::vector<FontFace>& faces);

    struct Closer {
        void operator()(FT_LibraryRec_* library) const;
    };
    std::unique_ptr<FT_LibraryRec_, Closer> mLibrary;
};

}  // namespace pellwick
