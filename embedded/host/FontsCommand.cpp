#include <nlohmann/json.hpp>
#include <set>

#include "Commands.h"
#include "FontRecords.h"
#include "FoundFonts.h"
#include "GBinaryDocumentFontExtractor.h"
#include "Output.h"

namespace {

using documents::DocumentFonts;
using documents::ReadStatus;
using nlohmann::json;

/// What is known of one document.
struct Listing {
    DocumentFonts found;
    std::string error;  ///< why its fonts are not known; empty when they are
    ErrorCode code = CoreErrorCodes::kSuccess;

    bool IsRead() const { return found.status == ReadStatus::kRead; }
};

/// Takes the names that the search for those of every kind finds.
void Search(const std::string& file, Listing& listing) {
    std::set<std::string> names;
    const GFileSystemSpec spec(file);
    listing.code = GBinaryDocumentFontExtractor{spec}.ExtractFontNames(names);
    if (listing.code != CoreErrorCodes::kSuccess) {
        listing.error = "cannot be read (" + ErrorCodeToName(listing.code) + "); give the path of a document";
        return;
    }
    for (const std::string& name : names)
        listing.found.fonts.push_back({name, "", "", ""});
}

/// By a reader of its format, or else by the search.
Listing List(FontFinder& finder, const std::string& file, const FontsOptions& options) {
    Listing listing;
    if (!options.searchesBytes)
        listing.found = finder.Find(file);
    if (listing.IsRead())
        return listing;
    Search(file, listing);
    if (options.searchesBytes || !listing.error.empty() || !listing.found.fonts.empty())
        return listing;
    if (listing.found.status == ReadStatus::kUnreadable)
        listing.error = "cannot be read: " + listing.found.problem;
    else if (!GBinaryDocumentFontExtractor::KnowsKindOf(GFileSystemSpec(file)))
        listing.error = "is of a kind that cannot be read, and holds no font names that can be found";
    return listing;
}

std::set<std::string> NamesOf(const DocumentFonts& fonts) {
    std::set<std::string> names;
    for (const documents::DocumentFont& font : fonts.fonts)
        names.insert(font.postScriptName);
    return names;
}

void PrintNames(const std::string& prefix, const DocumentFonts& fonts) {
    for (const std::string& name : NamesOf(fonts))
        PrintLine(prefix + name);
}

void PrintPlaces(const std::string& prefix, const DocumentFonts& fonts) {
    std::vector<std::vector<std::string>> rows{{"FONT", "EMBEDDED", "WHERE"}};
    for (const documents::DocumentFont& font : fonts.fonts)
        rows.push_back({prefix + font.postScriptName, font.isEmbedded ? "yes" : "no", font.where});
    PrintTable(std::move(rows));
}

void PrintAsJSON(const std::string& file, const Listing& listing) {
    json line{{"file", file}};
    if (!listing.error.empty()) {
        const bool hasCode = listing.code != CoreErrorCodes::kSuccess;
        line["error"] = hasCode ? ErrorCodeToName(listing.code) : listing.error;
        line["code"] = hasCode ? listing.code : CoreErrorCodes::kNotSupported;
    } else {
        line["fonts"] = NamesOf(listing.found);
        line["reader"] = listing.IsRead() ? listing.found.reader : "search";
        if (listing.IsRead())
            line["details"] = documents::FontRecords(listing.found);
    }
    PrintJson(line.dump(-1, ' ', false, json::error_handler_t::replace));
}

void Print(const std::string& file, const Listing& listing, const FontsOptions& options) {
    const std::string prefix = options.files.size() > 1 ? file + ": " : "";
    if (!listing.error.empty() && !options.json)
        PrintError(file + " " + listing.error);
    else if (listing.found.status == ReadStatus::kUnreadable && listing.error.empty())
        PrintError(file + " was searched for font names, since " + listing.found.problem);
    if (options.json)
        PrintAsJSON(file, listing);
    else if (options.showsPlaces && listing.IsRead())
        PrintPlaces(prefix, listing.found);
    else
        PrintNames(prefix, listing.found);
}

}  // namespace

int RunFonts(const FontsOptions& options) {
    FontFinder finder;
    int status = exit_status::kDone;
    for (const std::string& file : options.files) {
        const Listing listing = List(finder, file, options);
        Print(file, listing, options);
        if (!listing.error.empty())
            status = exit_status::kFailed;
    }
    return status;
}
