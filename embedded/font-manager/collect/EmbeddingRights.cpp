#include "collect/EmbeddingRights.h"

namespace pellwick {
namespace {

constexpr unsigned kRestricted = 0x0002;
constexpr unsigned kPreviewAndPrint = 0x0004;
constexpr unsigned kEditable = 0x0008;
constexpr unsigned kNoSubsetting = 0x0100;
constexpr unsigned kBitmapOnly = 0x0200;

/// Old fonts may have several of these flags: then the one that allows most counts.
const char* UsageText(unsigned embedding) {
    if ((embedding & kEditable) != 0)
        return "editable";
    if ((embedding & kPreviewAndPrint) != 0)
        return "preview and print";
    return (embedding & kRestricted) != 0 ? "restricted" : "installable";
}

}  // namespace

std::string EmbeddingText(std::optional<uint16_t> embedding) {
    if (!embedding)
        return "unknown";
    std::string text = UsageText(*embedding);
    if ((*embedding & kNoSubsetting) != 0)
        text += ", no subsetting";
    if ((*embedding & kBitmapOnly) != 0)
        text += ", bitmaps only";
    return text;
}

bool ForbidsEmbedding(std::optional<uint16_t> embedding) {
    return embedding && (*embedding & (kRestricted | kPreviewAndPrint | kEditable)) == kRestricted;
}

}  // namespace pellwick
