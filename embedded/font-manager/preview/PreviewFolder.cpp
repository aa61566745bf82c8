#include "preview/PreviewFolder.h"

#include "activation/FontVault.h"
#include "platform/Files.h"
#include "platform/PrivateFolder.h"
#include "platform/Utf8Path.h"

namespace pellwick {

Preview PreviewFolder::PathsOf(const Font& font) const {
    return {PathOf(font, kPreviewScales[0]), PathOf(font, kPreviewScales[1])};
}

bool PreviewFolder::IsThere(const Preview& preview) {
    return platform::IsExistingFile(preview.path) && platform::IsExistingFile(preview.doublePath);
}

bool PreviewFolder::Store(const std::string& path, const NameImage& image) {
    const std::string png = EncodePng(image);
    return !png.empty() &&
           !platform::MakePrivateFolder(platform::Utf8Text(platform::Utf8Path(path).parent_path())) &&
           !platform::WriteWholeFile(path, png);
}

std::string PreviewFolder::PathOf(const Font& font, int scale) const {
    FontFile image;
    image.checksum = font.file.checksum;
    image.extension = "-" + std::to_string(font.face) + (scale == 1 ? ".png" : "@2x.png");
    return ShardedPath(mFolder, image);
}

}  // namespace pellwick
