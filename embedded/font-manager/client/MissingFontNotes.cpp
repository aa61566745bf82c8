#include "client/MissingFontNotes.h"

#include <algorithm>

#include "common/FontManagerLimits.h"

namespace pellwick {

void MissingFontNotes::Note(const std::string& path, Json fonts) {
    const std::lock_guard guard(mDocumentsLock);
    std::erase_if(mDocuments, [&](const auto& document) { return document.first == path; });
    mDocuments.emplace_front(path, std::move(fonts));
    mDocuments.resize(std::min(mDocuments.size(), kMaxDocumentsWithMissingFonts));
}

std::optional<Json> MissingFontNotes::Of(const std::string& path) {
    const std::lock_guard guard(mDocumentsLock);
    const auto found = std::find_if(mDocuments.begin(), mDocuments.end(),
                                    [&](const auto& document) { return document.first == path; });
    return found != mDocuments.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace pellwick
