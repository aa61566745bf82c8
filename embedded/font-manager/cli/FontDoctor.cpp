#include "cli/FontDoctor.h"

#include <algorithm>
#include <set>

#include "FontRecordKeys.h"
#include "cli/DocumentNames.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick::cli {
namespace {

/// Why the font is active, or is not.
void ExamineFont(const Json& font, bool isVisible, Findings& findings) {
    const std::string name = StringMember(font, kGS_PostScriptNameKey) + " (" +
                             std::to_string(IntegerMember(font, kGS_DatabaseIDKey)) + ")";
    const std::string seen = isVisible ? ", and programs see it" : ", but programs do not see it";
    const char* state = isVisible ? kOk : kWrong;
    const std::string mend = isVisible ? "" : "start the program again, or see " + PastedCommand("doctor");
    switch (IntegerMember(font, kGS_ActivationStateKey)) {
        case kFontActivationState_SystemFont:
            return findings.Add(state, name, "the system has it at " + StringMember(font, kGS_PathKey) + seen,
                                mend);
        case kFontActivationState_ActivatedByUser:
            return findings.Add(state, name, "active, as you chose" + seen, mend);
        case kFontActivationState_ActivatedByPlugin:
            return findings.Add(state, name, "active, since open documents need it" + seen, mend);
        case kFontActivationState_Missing:
            return findings.Add(kWrong, name, "its file is gone from the vault",
                                "add " + StringMember(font, kGS_OutlineFileNameKey) + " again");
        default:
            return findings.Add(
                kOk, name, "not active: no open document needs it, and you did not activate it",
                PastedCommand("activate " + std::to_string(IntegerMember(font, kGS_DatabaseIDKey))));
    }
}

/// The IDs of those that the system offers to programs. For each page of the list the system looks at all its
/// fonts, so that only pages that one of these may be in are asked for.
std::set<long long> VisibleAmong(AgentSession& session, const Json& fonts) {
    std::set<long long> ids;
    for (const Json& font : fonts)
        ids.insert(IntegerMember(font, kGS_DatabaseIDKey));
    std::set<long long> visible;
    for (auto next = ids.begin(); next != ids.end();) {
        const Json page =
            session.Call(method::kListFonts, {{member::kAfter, *next - 1}, {member::kVisible, true}});
        const Json& listed = ArrayMember(page, member::kFonts);
        if (listed.empty())
            break;
        for (const Json& font : listed) {
            if (BoolMember(font, member::kVisible))
                visible.insert(IntegerMember(font, kGS_DatabaseIDKey));
        }
        next = ids.upper_bound(IntegerMember(listed.back(), kGS_DatabaseIDKey));
    }
    return visible;
}

/// "perhaps Sample-Bold, same family, Bold instead of Black".
std::string BestReplacementText(const Json& replacements) {
    for (const Json& font : replacements) {
        if (IntegerMember(font, kGS_RankKey) == 1)
            return "perhaps " + StringMember(font, kGS_PostScriptNameKey) + ", " +
                   StringMember(font, kGS_ReasonKey);
    }
    return "nothing comes near";
}

std::string RequestedName(const Json& request) {
    return request.is_string() ? request.get<std::string>() : StringMember(request, kGS_PostScriptNameKey);
}

}  // namespace

void ExamineFonts(AgentSession& session, const Json& fonts, Findings& findings) {
    const std::set<long long> visible = VisibleAmong(session, fonts);
    for (const Json& font : fonts)
        ExamineFont(font, visible.count(IntegerMember(font, kGS_DatabaseIDKey)) != 0, findings);
}

void ExamineDocument(AgentSession& session, const std::string& path, Findings& findings) {
    const Json requests = FontsOfDocument(path);
    if (requests.empty())
        return findings.Add(kOk, path, "it names no fonts");
    Json matches = Json::array();
    for (size_t first = 0; first < requests.size(); first += kMaxFontsPerRequest) {
        const auto begin = requests.begin() + static_cast<std::ptrdiff_t>(first);
        const auto count = std::min(requests.size() - first, kMaxFontsPerRequest);
        const Json part(std::vector<Json>(begin, begin + static_cast<std::ptrdiff_t>(count)));
        const Json answer =
            session.Call(method::kMatchFonts, {{member::kFonts, part}, {member::kDocument, path}});
        for (const Json& font : ArrayMember(answer, member::kReported))
            matches.push_back(font[kGS_MatchedFontKey]);
        const Json& unmatched = ArrayMember(answer, member::kUnmatched);
        const Json& replacements = ArrayMember(answer, member::kReplacements);
        for (size_t index = 0; index < unmatched.size(); ++index)
            findings.Add(kWrong, RequestedName(part[unmatched[index].get<size_t>()]),
                         "missing; " + (index < replacements.size() ? BestReplacementText(replacements[index])
                                                                    : "nothing was looked for"),
                         PastedCommand("add PATH"));
    }
    ExamineFonts(session, matches, findings);
}

}  // namespace pellwick::cli
