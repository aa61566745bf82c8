#include "PanelDocuments.h"

#include <algorithm>

#include "FontRecordKeys.h"
#include "FoundFonts.h"
#include "MissingFonts.h"
#include "platform/Console.h"
#include "platform/Files.h"

namespace {

using nlohmann::json;

std::string NameOf(const json& font) {
    return font.value(kGS_PostScriptNameKey, "");
}

json DescribeMatched(const json& font) {
    return {{"name", NameOf(font)},
            {"fontID", font.value(kGS_DatabaseIDKey, int64_t{0})},
            {"isMissing", false},
            {"version", font.value(kGS_VersionKey, "")},
            {"reason", font.value(kGS_ReasonKey, "")},
            {"conflict", font.value(kGS_ConflictKey, "")},
            {"workgroupID", font.value(kGS_WorkgroupIDKey, int64_t{kWorkgroupID_Unknown})},
            {"workgroupName", font.value(kGS_WorkgroupNameKey, "")}};
}

json DescribeMissing(const json& font) {
    json replacements = json::array();
    for (const json& each : ReplacementsOf(font)) {
        replacements.push_back({{"name", NameOf(each)},
                                {"fontID", each.value(kGS_DatabaseIDKey, int64_t{0})},
                                {"reason", each.value(kGS_ReasonKey, "")}});
    }
    return {{"name", NameOf(font)},
            {"isMissing", true},
            {"where", font.value(kGS_WhereKey, "")},
            {"replacements", std::move(replacements)}};
}

}  // namespace

PanelDocuments::~PanelDocuments() {
    for (const OpenedDocument& document : mDocuments)
        mCore.HandleCloseDocument(document.path.c_str(), "");
}

void PanelDocuments::Open(const std::vector<std::string>& paths) {
    FontFinder finder;
    for (const std::string& path : paths) {
        if (platform::WasInterrupted())
            break;
        mDocuments.push_back(OpenDocument(mCore, path, finder.FindForCore(path)));
    }
}

void PanelDocuments::Replace(const std::string& choice) {
    const json wanted = json::parse(choice, nullptr, false);
    const json index = wanted.is_object() ? wanted.value("document", json()) : json();
    if (!index.is_number_unsigned() || index.get<size_t>() >= mDocuments.size())
        return;
    OpenedDocument& document = mDocuments[index.get<size_t>()];
    const auto font =
        std::find_if(document.unmatched.begin(), document.unmatched.end(),
                     [&](const json& each) { return wanted.value("font", json()) == NameOf(each); });
    if (font == document.unmatched.end())
        return;
    for (const json& each : ReplacementsOf(*font)) {
        if (wanted.value("fontID", json()) != each.value(kGS_DatabaseIDKey, int64_t{0}))
            continue;
        json chosen = std::move(*font);
        document.unmatched.erase(font);
        chosen[kGS_MatchedFontKey] = each;
        TakeReplacement(mCore, document, std::move(chosen));
        return;
    }
}

std::string PanelDocuments::Describe() const {
    json documents = json::array();
    for (const OpenedDocument& document : mDocuments) {
        json fonts = json::array();
        std::transform(document.matched.begin(), document.matched.end(), std::back_inserter(fonts),
                       DescribeMatched);
        std::transform(document.unmatched.begin(), document.unmatched.end(), std::back_inserter(fonts),
                       DescribeMissing);
        documents.push_back({{"name", platform::NamePart(document.path)},
                             {"fonts", std::move(fonts)},
                             {"problem", WhyNoFontsAreKnown(document)}});
    }
    return documents.dump(-1, ' ', false, json::error_handler_t::replace);
}
