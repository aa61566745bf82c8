#include "OpenedDocument.h"

#include <memory>

namespace {

using nlohmann::json;

/// Room for the fonts of any document; memory that is not written to costs nothing.
constexpr size_t kFontListSize = size_t{64} << 20;

/// The core writes no list at all when it could not ask the font manager.
json FontList(const char* text) {
    json list = json::parse(text, nullptr, false);
    return list.is_array() ? list : json::array();
}

}  // namespace

bool IsSuccess(uint32_t code) {
    return code == PLUGINCORE_SUCCESS || code == PLUGINCORE_FONTS_ACTIVATED;
}

OpenedDocument OpenDocument(const CoreLibrary& core, const std::string& path, const json& fonts) {
    OpenedDocument document;
    document.path = path;
    std::string list;
    if (!fonts.is_null()) {
        document.numFontsNamed = fonts.size();
        list = fonts.dump(-1, ' ', false, json::error_handler_t::replace);
    }
    const auto matched = std::make_unique_for_overwrite<char[]>(kFontListSize);
    const auto unmatched = std::make_unique_for_overwrite<char[]>(kFontListSize);
    matched[0] = unmatched[0] = '\0';
    size_t matchedSize = kFontListSize;
    size_t unmatchedSize = kFontListSize;
    document.code =
        core.HandleOpenExistingDocument(path.c_str(), list.c_str(), matched.get(), &matchedSize,
                                        unmatched.get(), &unmatchedSize, &document.numFontsActivated);
    if (IsSuccess(document.code)) {
        document.matched = FontList(matched.get());
        document.unmatched = FontList(unmatched.get());
    }
    return document;
}
