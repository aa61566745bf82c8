#include "cli/FontDoctor.h"

#include <algorithm>
#include <set>

#include "FontRecordKeys.h"
#include "cli/DocumentNames.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "platform/Files.h"
#include "scan/FontFiles.h"

namespace pellwick::cli {
namespace {

/// Why the font is active, or is not.
void ExamineFont(const std::string& name, const Json& font, bool isVisible, Findings& findings) {
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

bool IsFontFile(const std::string& path) {
    platform::ReadOnlyFile file;
    std::string beginning(kSignatureSize, '\0');
    size_t size = 0;
    if (file.Open(path) || file.ReadAt(0, beginning.data(), beginning.size(), size))
        return false;
    return MayBeFontFile(std::string_view(beginning).substr(0, size));
}

std::string NameOf(const Json& font) {
    return StringMember(font, kGS_PostScriptNameKey) + " (" +
           std::to_string(IntegerMember(font, kGS_DatabaseIDKey)) + ")";
}

/// "Sample-Bold, by its full name Sample-Bold (3)": the font as the document calls it, and the one that it gets.
std::string NameOfMatch(const Json& reported) {
    const std::string asked = StringMember(reported, kGS_PostScriptNameKey);
    const Json& font = reported[kGS_MatchedFontKey];
    const std::string reason = StringMember(reported, kGS_ReasonKey);
    return asked == StringMember(font, kGS_PostScriptNameKey) && reason.empty()
               ? NameOf(font)
               : asked + (reason.empty() ? "" : ", " + reason) + " " + NameOf(font);
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
        ExamineFont(NameOf(font), font, visible.count(IntegerMember(font, kGS_DatabaseIDKey)) != 0, findings);
}

void ExamineDocument(AgentSession& session, const std::string& path, Findings& findings) {
    if (IsFontFile(path))
        return findings.Add(kWarning, path, "it is a font file, not a document", PastedCommand("add FILE"));
    const Json requests = FontsOfDocument(path);
    if (requests.empty())
        return findings.Add(kOk, path, "it names no fonts");
    Json reported = Json::array();
    Json matches = Json::array();
    for (size_t first = 0; first < requests.size(); first += kMaxFontsPerRequest) {
        const auto begin = requests.begin() + static_cast<std::ptrdiff_t>(first);
        const auto count = std::min(requests.size() - first, kMaxFontsPerRequest);
        const Json part(std::vector<Json>(begin, begin + static_cast<std::ptrdiff_t>(count)));
        const Json answer =
            session.Call(method::kMatchFonts, {{member::kFonts, part}, {member::kDocument, path}});
        for (const Json& font : ArrayMember(answer, member::kReported)) {
            reported.push_back(font);
            matches.push_back(font[kGS_MatchedFontKey]);
        }
        const Json& unmatched = ArrayMember(answer, member::kUnmatched);
        const Json& replacements = ArrayMember(answer, member::kReplacements);
        for (size_t index = 0; index < unmatched.size(); ++index)
            findings.Add(kWrong, RequestedName(part[unmatched[index].get<size_t>()]),
                         "missing; " + (index < replacements.size() ? BestReplacementText(replacements[index])
                                                                    : "nothing was looked for"),
                         PastedCommand("add PATH"));
    }
    const std::set<long long> visible = VisibleAmong(session, matches);
    for (const Json& font : reported) {
        const Json& matched = font[kGS_MatchedFontKey];
        ExamineFont(NameOfMatch(font), matched, visible.count(IntegerMember(matched, kGS_DatabaseIDKey)) != 0,
                    findings);
    }
}

}  // namespace pellwick::cli
