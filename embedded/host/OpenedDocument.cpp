#include "OpenedDocument.h"

#include <fmt/core.h>

#include <chrono>
#include <memory>
#include <set>

#include "FileUri.h"
#include "FontRecordKeys.h"
#include "GBinaryDocumentFontExtractor.h"
#include "HostSession.h"
#include "Output.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;

/// Room for the fonts of any document; memory that is not written to costs nothing.
constexpr size_t kFontListSize = size_t{64} << 20;

/// The core writes no list at all when it could not ask the font manager.
json FontList(const char* text) {
    json list = json::parse(text, nullptr, false);
    return list.is_array() ? list : json::array();
}

/// What is wrong where a document's fonts were named, and the font manager's answer has none of them.
std::string NoAnswerText(size_t numFonts) {
    return fmt::format(
        "the font manager has not answered for its {} fonts; see how it is with: {}, and open the document "
        "again",
        numFonts, PellwickCommand("status"));
}

/// What is wrong where the core searched a document and no fonts are known. Empty: it has none.
std::string WhySearchFoundNothing(const std::string& path) {
    constexpr std::chrono::seconds kPatience{2};
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(path)};
    extractor.SetTimeLimit(kPatience);
    std::set<std::string> names;
    if (extractor.ExtractFontNames(names) != CoreErrorCodes::kSuccess)
        return {};
    EraseImpossibleNames(names);
    if (!names.empty())
        return NoAnswerText(names.size());
    return extractor.HasGivenWay() ? "it is too large to be searched for fonts while it is opened; "
                                     "'plugincore-host fonts' searches all of it"
                                   : "";
}

}  // namespace

bool IsSuccess(uint32_t code) {
    return code == PLUGINCORE_SUCCESS || code == PLUGINCORE_FONTS_ACTIVATED;
}

std::string PathOfDocument(const std::string& file) {
    const std::string path =
        file.starts_with("file:") && !platform::IsExistingFile(file) ? documents::PathOfUri(file) : file;
    return path.empty() ? file : path;
}

std::vector<std::string> FindDocuments(const std::vector<std::string>& files) {
    std::vector<std::string> paths;
    for (const std::string& file : files) {
        if (const std::string path = PathOfDocument(file); platform::IsExistingFile(path))
            paths.push_back(platform::AbsolutePath(path));
        else
            PrintError(file + " was not found; give the path of a document");
    }
    return paths;
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

OpenedDocument OpenFonts(const CoreLibrary& core, const std::vector<std::string>& names) {
    json records = json::array();
    for (const std::string& name : names)
        records.push_back({{kGS_PostScriptNameKey, name}});
    return OpenDocument(core, "--fonts", records);
}

std::string WhyNoFontsAreKnown(const OpenedDocument& document) {
    if (!IsSuccess(document.code))
        return "its fonts are not known: " + ResultName(document.code);
    if (!document.matched.empty() || !document.unmatched.empty())
        return {};
    if (!document.numFontsNamed)
        return WhySearchFoundNothing(document.path);
    return *document.numFontsNamed > 0 ? NoAnswerText(*document.numFontsNamed) : "";
}
