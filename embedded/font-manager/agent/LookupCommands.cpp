// Finding fonts.
#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "agent/FontRecord.h"
#include "agent/FontReports.h"
#include "agent/NamedRecords.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The workgroup that the fonts are to be in; 0 and the ID of all workgroups stand for any.
int32_t WantedWorkgroup(const Json& arguments) {
    constexpr int32_t kNoWorkgroup = -1;
    const long long workgroup = IntegerMember(arguments, member::kWorkgroup, kWorkgroupID_All);
    if (workgroup == kWorkgroupID_All || workgroup == 0)
        return FontStore::kAnyWorkgroup;
    const int32_t id = IDOf(workgroup);
    return id != 0 ? id : kNoWorkgroup;
}

Json MatchForDocument(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    const Json& requests = ArrayMember(arguments, member::kFonts);
    Json reported = Json::array();
    Json unmatched = Json::array();
    for (size_t index = 0; index < requests.size(); ++index) {
        context.audience.KeepAlive();
        const RequestedFont request = RequestedFontOf(requests[index]);
        const std::vector<Font> candidates = MatchFonts(manager.fonts, request);
        if (candidates.empty()) {
            unmatched.push_back(index);
            continue;
        }
        const Font& font = candidates[IndexOfBestMatch(candidates, request)];
        reported.push_back(ReportedFont(requests[index], FontRecord(manager, font), manager, font));
    }
    RequireSendable(reported);
    Json replacements = ReplacementsFor(context, arguments, unmatched);
    return {{member::kReported, std::move(reported)},
            {member::kUnmatched, std::move(unmatched)},
            {member::kReplacements, std::move(replacements)}};
}

}  // namespace

Json commands::GetFont(CommandContext& context, const Json& arguments) {
    return FontRecordWithFingerprint(context.manager, FindFont(context, arguments));
}

/// The records of the fonts that are known, in the order of the request.
Json commands::GetFonts(CommandContext& context, const Json& arguments) {
    Json records = Json::array();
    for (const uint32_t id : FontIDsOf(ArrayMember(arguments, member::kFonts))) {
        if (const auto font = context.manager.fonts.Find(id))
            records.push_back(FontRecord(context.manager, *font));
    }
    return {{member::kFonts, std::move(records)}};
}

Json commands::FindByPostScriptName(CommandContext& context, const Json& arguments) {
    RequestedFont request;
    request.postScriptName = StringMember(arguments, member::kName);
    std::vector<Font> fonts =
        context.manager.fonts.FindByPostScriptName(request.postScriptName, WantedWorkgroup(arguments));
    SortByMatch(fonts, request);
    return {{member::kFonts, FontRecords(context.manager, fonts)}};
}

Json commands::FindByFamilyName(CommandContext& context, const Json& arguments) {
    const std::vector<Font> fonts = context.manager.fonts.FindByFamily(StringMember(arguments, member::kName),
                                                                       WantedWorkgroup(arguments));
    return {{member::kFonts, FontRecords(context.manager, fonts)}};
}

Json commands::FindSameFamily(CommandContext& context, const Json& arguments) {
    const std::vector<Font> family = RestOfFamily(context.manager.fonts, FindFont(context, arguments));
    return {{member::kFonts, FontRecords(context.manager, family)}};
}

/// What people type: a PostScript name, family and style, a whole family, or a database ID. A page of the
/// fonts, those with larger IDs than member::kAfter.
Json commands::FindByAnyName(CommandContext& context, const Json& arguments) {
    FontStore& store = context.manager.fonts;
    const std::string name = StringMember(arguments, member::kName);
    const uint32_t after = PageStart(arguments);
    std::vector<Font> fonts = store.ListNamed(name, after, kListPageSize);
    uint32_t id = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    if (fonts.empty() && after == 0 && error == std::errc() && end == name.data() + name.size()) {
        if (auto font = store.Find(id))
            fonts.push_back(std::move(*font));
    }
    return {{member::kFonts, FontRecords(context.manager, fonts)}};
}

/// What a document would be given, without activating anything.
Json commands::MatchFonts(CommandContext& context, const Json& arguments) {
    return AnswerWhenFontsAreKnown(context, arguments, MatchForDocument);
}

}  // namespace pellwick
