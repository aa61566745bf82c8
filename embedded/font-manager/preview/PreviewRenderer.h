// Shows the names of fonts in their own faces.
#pragma once

#include <memory>
#include <string>

#include "store/FontStore.h"

struct FT_LibraryRec_;

namespace pellwick {

/// One thread.
class PreviewRenderer {
public:
    PreviewRenderer();
    ~PreviewRenderer();
    PreviewRenderer(const PreviewRenderer&) = delete;
    PreviewRenderer& operator=(const PreviewRenderer&) = delete;

    /// A PNG image (https://www.w3.org/TR/png/) of the font's full name, black on nothing, `scale` times
    /// kPreviewHeight pixels high and up to kMaxPreviewWidth wide; longer names are cut. Where the face lacks
    /// one of the letters it is the PostScript name, in whatever glyphs there are. Empty when the face shows
    /// nothing at all. `content` is that of the font's file; any bytes are safe.
    std::string Render(const std::string& content, const FontFace& font, int scale);

private:
    struct Closer {
        void operator()(FT_LibraryRec_* library) const;
    };
    std::unique_ptr<FT_LibraryRec_, Closer> mLibrary;
};

}  // namespace pellwick
