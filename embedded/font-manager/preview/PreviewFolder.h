// The images of fonts' names that were made before. Any of them may be deleted at any time.
#pragma once

#include <optional>
#include <string>

#include "activation/FontVault.h"
#include "preview/PreviewRenderer.h"

namespace pellwick {

/// The image's file in normal and in double size.
struct Preview {
    std::string path;
    std::string doublePath;
};

class PreviewFolder {
public:
    PreviewFolder(std::string folder, const FontVault& vault) : mFolder(std::move(folder)), mVault(vault) {}

    const std::string& Folder() const { return mFolder; }
    /// The font's images, which are made when they are not there. Nothing when they cannot be.
    std::optional<Preview> Provide(const Font& font);
    /// Lets go of the font file that was read last.
    void Rest();

private:
    std::string PathOf(const Font& font, int scale) const;
    bool Make(const Font& font, int scale, const std::string& path);
    bool ReadFontFile(const FontFile& file);

    const std::string mFolder;
    const FontVault& mVault;
    PreviewRenderer mRenderer;
    std::string mChecksum;  ///< of what is in mContent: the faces of a collection mostly come together
    std::string mContent;
};

}  // namespace pellwick
