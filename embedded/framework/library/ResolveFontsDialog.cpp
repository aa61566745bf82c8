#include "library/ResolveFontsDialog.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <vector>

#include "FontRecordKeys.h"
#include "library/DialogQuestions.h"

namespace {

using nlohmann::json;

/// What tells candidates of similar names apart: "Garamond, Somefoundry, OpenType, 2.1".
std::string Description(CFDictionaryRef font) {
    std::string description;
    for (const char* key : {kGS_FamilyKey, kGS_FoundryKey, kGS_FontKindKey, kGS_VersionKey}) {
        const std::string part = cf::GetString(font, key);
        if (!part.empty())
            description += (description.empty() ? "" : ", ") + part;
    }
    return description;
}

/// In the order of their names, since the dictionary has none.
json CandidateList(CFDictionaryRef candidates) {
    std::vector<const void*> keys(static_cast<size_t>(cf::Count(candidates)));
    if (!keys.empty())
        CFDictionaryGetKeysAndValues(candidates, keys.data(), nullptr);
    std::map<std::string, json> sorted;
    for (const void* key : keys) {
        const std::string name = cf::ToUtf8(cf::As<CFStringRef>(key));
        if (const auto record = cf::GetDictionary(candidates, name))
            sorted[name] = {{"name", name}, {"description", Description(record)}};
    }
    json list = json::array();
    for (auto& [name, candidate] : sorted)
        list.push_back(std::move(candidate));
    return list;
}

const json* FindNamed(const json& list, const json& name) {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&name](const json& entry) { return entry.at("name") == name; });
    return found != list.end() ? &*found : nullptr;
}

bool IsOffered(const json& fonts, const std::string& name, const json& candidate) {
    return std::any_of(fonts.begin(), fonts.end(), [&](const json& font) {
        return font.at("name") == name && FindNamed(font.at("candidates"), candidate) != nullptr;
    });
}

/// The chosen candidate's record; null when there is none for this font.
CFDictionaryRef FindReplacement(CFDictionaryRef font, const Replacements& replacements) {
    const auto chosen = replacements.find(cf::GetString(font, kGS_PostScriptNameKey));
    return chosen != replacements.end()
               ? cf::GetDictionary(cf::GetDictionary(font, kGS_PossibleReplacementsKey), chosen->second)
               : nullptr;
}

}  // namespace

DialogQuestion ResolveFontsQuestion(CFArrayRef fonts) {
    json list = json::array();
    for (CFIndex index = 0; index < cf::Count(fonts); ++index) {
        const auto font = cf::Get<CFDictionaryRef>(fonts, index);
        list.push_back({{"name", cf::GetString(font, kGS_PostScriptNameKey)},
                        {"candidates", CandidateList(cf::GetDictionary(font, kGS_PossibleReplacementsKey))}});
    }
    return {"ResolveFonts", {{"fonts", std::move(list)}}};
}

std::optional<Replacements> ChosenReplacements(const DialogQuestion& question, const DialogAnswer& answer) {
    Replacements replacements;
    if (IsDeclined(answer))
        return std::nullopt;
    if (answer == true)
        return replacements;
    const json chosen = answer.is_object() ? answer.value("replacements", json()) : json();
    bool isUnderstood = chosen.is_object();
    for (const auto& [name, candidate] : chosen.items()) {
        isUnderstood = isUnderstood && IsOffered(question.details.at("fonts"), name, candidate);
        if (isUnderstood)
            replacements[name] = candidate.get<std::string>();
    }
    if (isUnderstood)
        return replacements;
    ReportWrongAnswer(question, answer);
    return std::nullopt;
}

void SortOutFonts(CFArrayRef fonts, const Replacements& replacements, CFMutableArrayRef resolvedFonts,
                  CFMutableArrayRef skippedFonts) {
    for (CFIndex index = 0; index < cf::Count(fonts); ++index) {
        const auto font = cf::Get<CFDictionaryRef>(fonts, index);
        if (const CFDictionaryRef replacement = FindReplacement(font, replacements)) {
            const auto resolved = AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, font));
            cf::Set(resolved, kGS_MatchedFontKey, replacement);
            cf::Append(resolvedFonts, resolved);
        } else {
            cf::Append(skippedFonts, font);
        }
    }
}
