// Owners for FreeType's objects (https://freetype.org/freetype2/docs/reference/).
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <memory>
#include <string_view>

namespace pellwick {

struct FaceCloser {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using OwnedFace = std::unique_ptr<FT_FaceRec, FaceCloser>;

/// A face of a font file's content, which must outlive it; null, and FreeType's `error`, for what is none.
inline OwnedFace OpenFace(FT_Library library, std::string_view content, FT_Long index, FT_Error& error) {
    FT_Face face = nullptr;
    error = FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte*>(content.data()),
                               static_cast<FT_Long>(content.size()), index, &face);
    return OwnedFace(error == 0 ? face : nullptr);
}

}  // namespace pellwick
