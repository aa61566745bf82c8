#include "preview/PreviewFolder.h"

#include "common/Limits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {

std::optional<Preview> PreviewFolder::Provide(const Font& font) {
    Preview preview{PathOf(font, 1), PathOf(font, 2)};
    const bool isThere = (platform::IsExistingFile(preview.path) || Make(font, 1, preview.path)) &&
                         (platform::IsExistingFile(preview.doublePath) || Make(font, 2, preview.doublePath));
    return isThere ? std::optional(std::move(preview)) : std::nullopt;
}

void PreviewFolder::Rest() {
    mChecksum.clear();
    mContent = std::string();
}

std::string PreviewFolder::PathOf(const Font& font, int scale) const {
    FontFile image;
    image.checksum = font.file.checksum;
    image.extension = "-" + std::to_string(font.face) + (scale == 1 ? ".png" : "@2x.png");
    return ShardedPath(mFolder, image);
}

bool PreviewFolder::Make(const Font& font, int scale, const std::string& path) {
    if (!ReadFontFile(font.file))
        return false;
    const std::string png = mRenderer.Render(mContent, font, scale);
    return !png.empty() &&
           !platform::MakeFolders(platform::Utf8Text(platform::Utf8Path(path).parent_path()), true) &&
           !platform::WriteWholeFile(path, png);
}

bool PreviewFolder::ReadFontFile(const FontFile& file) {
    if (mChecksum == file.checksum)
        return true;
    Rest();
    if (platform::ReadWholeFile(mVault.PathOf(file), mContent, kMaxFontFileSize))
        return false;
    mChecksum = file.checksum;
    return true;
}

}  // namespace pellwick
