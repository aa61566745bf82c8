#include "library/ResolveFontsDialog.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <limits>
#include <tuple>

#include "FontRecordKeys.h"

namespace {

using Candidate = ResolveFontsDialog::Candidate;

/// What tells candidates of similar names apart, and why it is one: "Garamond, Somefoundry, OpenType, 2.1; same family,
/// Bold instead of SemiBold".
std::string Description(CFDictionaryRef font) {
    std::string description;
    for (const char* key : {kGS_FamilyKey, kGS_FoundryKey, kGS_FontKindKey, kGS_VersionKey}) {
        const std::string part = cf::GetString(font, key);
        if (!part.empty())
            description += (description.empty() ? "" : ", ") + part;
    }
    const std::string reason = cf::GetString(font, kGS_ReasonKey);
    return reason.empty() ? description : description + (description.empty() ? "" : "; ") + reason;
}

/// By rank, those without one last; then by name, since the dictionary has no order.
std::vector<Candidate> CandidateList(CFDictionaryRef candidates) {
    std::vector<const void*> keys(static_cast<size_t>(cf::Count(candidates)));
    if (!keys.empty())
        CFDictionaryGetKeysAndValues(candidates, keys.data(), nullptr);
    std::vector<std::tuple<int64_t, std::string, CFDictionaryRef>> ranked;
    for (const void* key : keys) {
        const std::string name = cf::ToUtf8(cf::As<CFStringRef>(key));
        if (const auto record = cf::GetDictionary(candidates, name))
            ranked.emplace_back(
                cf::GetInt64(record, kGS_RankKey).value_or(std::numeric_limits<int64_t>::max()), name,
                record);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<Candidate> list;
    list.reserve(ranked.size());
    for (const auto& [rank, name, record] : ranked)
        list.push_back({name, Description(record)});
    return list;
}

/// The chosen candidate's record; null when there is none for this font.
CFDictionaryRef FindReplacement(CFDictionaryRef font,
                                const std::map<std::string, std::string>& replacements) {
    const auto chosen = replacements.find(cf::GetString(font, kGS_PostScriptNameKey));
    return chosen != replacements.end()
               ? cf::GetDictionary(cf::GetDictionary(font, kGS_PossibleReplacementsKey), chosen->second)
               : nullptr;
}

}  // namespace

ResolveFontsDialog MakeResolveFontsDialog(CFArrayRef fonts) {
    ResolveFontsDialog dialog;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts))
        dialog.fonts.push_back({cf::GetString(font, kGS_PostScriptNameKey),
                                CandidateList(cf::GetDictionary(font, kGS_PossibleReplacementsKey))});
    return dialog;
}

void SortOutFonts(CFArrayRef fonts, const std::map<std::string, std::string>& replacements,
                  CFMutableArrayRef resolvedFonts, CFMutableArrayRef skippedFonts) {
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        if (const CFDictionaryRef replacement = FindReplacement(font, replacements)) {
            const auto resolved = AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, font));
            cf::Set(resolved, kGS_MatchedFontKey, replacement);
            cf::Append(resolvedFonts, resolved);
        } else {
            cf::Append(skippedFonts, font);
        }
    }
}
