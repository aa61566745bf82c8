// The images of fonts' names that were made before. Any of them may be deleted at any time.
#pragma once

#include <array>
#include <string>

#include "preview/NameImage.h"
#include "store/FontStore.h"

namespace pellwick {

/// The image's file in normal and in double size.
struct Preview {
    std::string path;
    std::string doublePath;
};

/// The sizes, as multiples of the normal one.
inline constexpr std::array<int, 2> kPreviewScales = {1, 2};

/// Any thread.
class PreviewFolder {
public:
    explicit PreviewFolder(std::string folder) : mFolder(std::move(folder)) {}

    const std::string& Folder() const { return mFolder; }
    /// Where the font's images are, or will be.
    Preview PathsOf(const Font& font) const;
    /// Whether both are there.
    static bool IsThere(const Preview& preview);
    /// Writes an image; false when that fails.
    static bool Store(const std::string& path, const NameImage& image);

private:
    std::string PathOf(const Font& font, int scale) const;

    const std::string mFolder;
};

}  // namespace pellwick
