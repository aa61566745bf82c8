// Records for dialogs to show.
#pragma once

#include <initializer_list>

#include "FontRecordKeys.h"
#include "Records.h"

inline auto WorkgroupRecord(int id, const char* name) {
    return Record(kGS_WorkgroupIDKey, id, kGS_WorkgroupNameKey, name);
}

/// `replacements`: the names of fonts, for a font that is missing.
inline auto FontRecord(const char* name, std::initializer_list<const char*> replacements = {}) {
    const auto font = [](const char* postScriptName) {
        return Record(kGS_PostScriptNameKey, postScriptName, kGS_FamilyKey, "Family", kGS_VersionKey, "2.1");
    };
    auto record = font(name);
    const auto candidates = Record();
    for (const char* replacement : replacements)
        cf::Set(candidates, replacement, font(replacement));
    if (replacements.size() > 0)
        cf::Set(record, kGS_PossibleReplacementsKey, candidates);
    return record;
}
