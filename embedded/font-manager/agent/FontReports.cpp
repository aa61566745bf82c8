#include "agent/FontReports.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>

#include "FontRecordKeys.h"
#include "agent/FontRecord.h"
#include "agent/SystemFonts.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The font that the user chose before in the document's place of the one that it lacks, and has not removed since;
/// the best others behind it.
std::vector<Font> CandidatesFor(CommandContext& context, const RequestedFont& request,
                                const std::string& document, bool& isFirstChosen) {
    FontManager& manager = context.manager;
    std::vector<Font> candidates = manager.replacements.Find(request);
    const auto chosen = manager.fonts.Find(manager.documents.Choice(document, request.postScriptName));
    isFirstChosen = chosen && chosen->activationState != kFontActivationState_Missing;
    if (!isFirstChosen)
        return candidates;
    std::erase_if(candidates,
                  [&](const Font& font) { return font.postScriptName == chosen->postScriptName; });
    candidates.insert(candidates.begin(), *chosen);
    return candidates;
}

/// As records by PostScript name.
Json CandidateRecords(CommandContext& context, const RequestedFont& request, const std::string& document) {
    bool isFirstChosen = false;
    Json records = Json::object();
    for (const Font& font : CandidatesFor(context, request, document, isFirstChosen)) {
        const bool isChosen = isFirstChosen && records.empty();
        Json record = FontRecord(context.manager, font);
        record[kGS_RankKey] = records.size() + 1;
        record[kGS_ReasonKey] =
            isChosen ? "chosen for this document before" : ReplacementReason(font, request);
        records[font.postScriptName] = std::move(record);
    }
    return records;
}

/// The fonts of its name that are active too, so that programs may take either; not those of the same bytes.
std::string ConflictText(FontManager& manager, const Font& font) {
    std::string text;
    for (const Font& other : manager.fonts.FindActive(font.postScriptName)) {
        if (other.file.checksum == font.file.checksum)
            continue;
        text += text.empty() ? "in conflict with " : ", ";
        text += (other.version.empty() ? "another version" : other.version) + " (" +
                ShownWorkgroupName(other.workgroupName) + ")";
    }
    return text;
}

using Answer = Json (*)(CommandContext& context, const Json& arguments);

Json AnswerBefore(std::chrono::steady_clock::time_point deadline, CommandContext& context,
                  const Json& arguments, Answer answer) {
    if (!AreSystemFontsIncomplete(context.manager) || std::chrono::steady_clock::now() > deadline)
        return answer(context, arguments);
    // Behind what is being read.
    return context.Defer(Deferral::LaneName::kSystemFonts, [=](FontWorker&) {
        return [=](CommandContext& later) { return AnswerBefore(deadline, later, arguments, answer); };
    });
}

}  // namespace

Json AnswerWhenFontsAreKnown(CommandContext& context, const Json& arguments, Answer answer) {
    return AnswerBefore(std::chrono::steady_clock::now() + kSystemFontsPatience, context, arguments, answer);
}

Json ReportedFont(const Json& requested, const Json& before, FontManager& manager, const Font& font) {
    const Json after = FontRecordWithFingerprint(manager, font);
    Json reported = after;
    if (requested.is_object())
        reported.update(requested);
    // Those of a request are how to look for its font, or what an earlier open said of it.
    for (const char* key : {kGS_ExactMatchKey, kGS_EntireFamilyKey, kGS_ReasonKey, kGS_ConflictKey})
        reported.erase(key);
    for (const char* key : {kGS_DatabaseIDKey, kGS_ActivationStateKey, kGS_PathKey})
        reported[key] = after[key];
    reported[kGS_MatchedFontKey] = before;
    if (std::string reason = MatchReason(font, RequestedFontOf(requested)); !reason.empty())
        reported[kGS_ReasonKey] = std::move(reason);
    if (std::string conflict = ConflictText(manager, font); !conflict.empty())
        reported[kGS_ConflictKey] = std::move(conflict);
    return reported;
}

Json ReplacementsFor(CommandContext& context, const Json& arguments, const Json& unmatched) {
    const Json& requests = ArrayMember(arguments, member::kFonts);
    const long long wanted = IntegerMember(arguments, member::kReplacements, kMaxFontsWithReplacements);
    const size_t limit = wanted < 0 ? 0 : std::min<size_t>(wanted, kMaxFontsWithReplacements);
    Json replacements = Json::array();
    for (const Json& index : unmatched) {
        if (replacements.size() == limit)
            break;
        context.audience.KeepAlive();
        replacements.push_back(CandidateRecords(context, RequestedFontOf(requests[index.get<size_t>()]),
                                                StringMember(arguments, member::kDocument)));
    }
    return replacements;
}

}  // namespace pellwick
