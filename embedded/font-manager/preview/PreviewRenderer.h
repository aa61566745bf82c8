// Shows the names of fonts in their own faces.
#pragma once

#include <memory>
#include <string_view>

#include "preview/NameImage.h"
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

    /// The font's full name, `scale` times kPreviewHeight pixels high and up to kMaxPreviewWidth wide; longer
    /// names are cut. Where the face lacks one of the letters it is the PostScript name, in whatever glyphs
    /// there are. Of no width when the face shows nothing at all. `content` is that of the font's file; any
    /// bytes are safe.
    NameImage Render(std::string_view content, const FontFace& font, int scale);

private:
    struct Closer {
        void operator()(FT_LibraryRec_* library) const;
    };
    std::unique_ptr<FT_LibraryRec_, Closer> mLibrary;
};

}  // namespace pellwick
