// Records for dialogs to show.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <initializer_list>

#include "FontRecordKeys.h"

using Record = CFRef<CFMutableDictionaryRef>;
using RecordList = CFRef<CFMutableArrayRef>;

inline Record WorkgroupRecord(int id, const char* name) {
    auto record = cf::MutableDictionary();
    cf::Set(record, kGS_WorkgroupIDKey, id);
    cf::Set(record, kGS_WorkgroupNameKey, name);
    return record;
}

/// `replacements`: the names of fonts, for a font that is missing.
inline Record FontRecord(const char* name, std::initializer_list<const char*> replacements = {}) {
    auto record = cf::MutableDictionary();
    const auto candidates = cf::MutableDictionary();
    cf::Set(record, kGS_PostScriptNameKey, name);
    cf::Set(record, kGS_FamilyKey, "Family");
    cf::Set(record, kGS_VersionKey, "2.1");
    for (const char* replacement : replacements)
        cf::Set(candidates, replacement, FontRecord(replacement));
    if (replacements.size() > 0)
        cf::Set(record, kGS_PossibleReplacementsKey, candidates);
    return record;
}

inline RecordList Records(std::initializer_list<Record> records) {
    auto list = cf::MutableArray();
    for (const Record& record : records)
        cf::Append(list, record);
    return list;
}
